// One board driven by many processes at once: no change is lost, none overtakes another, no item comes twice.
#include "tests/processes/outside.h"
#include "tests/processes/shared_board.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <vector>

namespace tests::boards
{

namespace
{

using Pattern = SharedBoard::Pattern;

void addFrom(const std::string &hex, Pattern &sum)
{
    for (std::size_t k = 0; k < sum.size(); ++k)
        sum[k] |= static_cast<std::uint8_t>(std::stoi(hex.substr(2 * k, 2), nullptr, 16));
}

class OneBoard : public BothWidths
{
protected:
    std::vector<Peer> start(std::size_t count) const
    {
        std::vector<Peer> peers;
        for (std::size_t k = 0; k < count; ++k)
            peers.emplace_back(program(k));
        for (Peer &peer : peers)
            EXPECT_EQ(peer.ask("do open").substr(0, 10), "= open 1 0");
        return peers;
    }
    static constexpr int longest = 60000;  // ms
};

INSTANTIATE_TEST_SUITE_P(Peers, OneBoard, testing::ValuesIn(widths()), nameOfWidth);

TEST_P(OneBoard, SixteenProcessesLoseNoChange)
{
    constexpr std::size_t processes = 16;
    const int changes = mixed() ? 200 : 500;
    for (Rounds rounds(named("no lost change"), mixed() ? 1 : 3); rounds.another();) {
        startNewBoard();
        std::vector<Peer> peers = start(processes);
        for (std::size_t k = 0; k < processes; ++k)
            peers[k].tell("own " + std::to_string(2 * k) + " 2 " + std::to_string(changes));
        Pattern on = {}, off = {};
        for (Peer &peer : peers) {
            std::istringstream ends(peer.answer(longest));
            std::string ownOn, ownOff;
            ends >> ownOn >> ownOff;
            ASSERT_EQ(ownOff.size(), 10u) << ends.str();
            addFrom(ownOn, on);
            addFrom(ownOff, off);
        }
        const SharedBoard &board = sharedBoard();
        rounds.note("changes", board.changes);
        EXPECT_EQ(board.changes, processes * static_cast<std::size_t>(changes));
        EXPECT_EQ(board.disagreements, 0u);
        EXPECT_EQ(board.on, on);
        EXPECT_EQ(board.off, off);
        Pattern sharedOn = {}, sharedOff = {};
        addFrom(peers[0].ask("on"), sharedOn);
        addFrom(peers[0].ask("off"), sharedOff);
        EXPECT_EQ(sharedOn, on);
        EXPECT_EQ(sharedOff, off);
        expectAllQuit(peers);
        expectNothingLeft();
    }
}

TEST_P(OneBoard, EightProcessesDrainOneStreamOnceAndInOrder)
{
    const std::size_t itemsEach = mixed() ? 1000 : 4000;
    for (Rounds rounds(named("one stream"), mixed() ? 1 : 3); rounds.another();) {
        startNewBoard();
        std::vector<Peer> peers = start(8);
        for (Peer &peer : peers)
            peer.tell("drain " + std::to_string(itemsEach));
        std::vector<int> all;
        for (Peer &peer : peers) {
            std::istringstream numbers(peer.answer(longest));
            const std::vector<int> own(std::istream_iterator<int>(numbers), {});
            EXPECT_EQ(own.size(), itemsEach) << numbers.str();
            EXPECT_TRUE(std::is_sorted(own.begin(), own.end())) << "out of order";
            all.insert(all.end(), own.begin(), own.end());
        }
        std::sort(all.begin(), all.end());
        for (std::size_t k = 0; k < all.size(); ++k)
            ASSERT_EQ(all[k], static_cast<int>(k)) << "an item lost or handed out twice";
        rounds.note("items", all.size());
        expectAllQuit(peers);
        expectNothingLeft();
    }
}

}  // namespace

}  // namespace tests::boards
