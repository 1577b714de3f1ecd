// One board driven by many processes at once: no change is lost, none overtakes another, no item comes twice.
#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <sstream>
#include <vector>

#include "tests/processes/outside.h"
#include "tests/processes/trace.h"

namespace tests::boards
{

namespace
{

using Pattern = std::array<std::uint8_t, 5>;

Pattern patternOf(const std::string &hex)
{
    Pattern pattern = {};
    for (std::size_t k = 0; k < pattern.size(); ++k)
        pattern[k] = static_cast<std::uint8_t>(std::stoi(hex.substr(2 * k, 2), nullptr, 16));
    return pattern;
}

void unite(Pattern &sum, const Pattern &part)
{
    for (std::size_t k = 0; k < sum.size(); ++k)
        sum[k] = sum[k] | part[k];
}

/// What a board does with each request.
struct Board {
    void obey(const Change &change)
    {
        if (change.request == 83)
            std::memcpy(on.data(), change.payload, on.size());
        if (change.request == 84)
            std::memcpy(off.data(), change.payload, off.size());
        for (std::size_t k = 0; change.request == 77 && k < on.size(); ++k) {
            on[k] = static_cast<std::uint8_t>((on[k] | change.payload[k]) & ~change.payload[5 + k]);
            off[k] = static_cast<std::uint8_t>((off[k] | change.payload[k]) & ~change.payload[5 + k]);
        }
    }

    Pattern on = {};
    Pattern off = {};
};

/// Goes through the changes in the order in which the board saw them; after each it must stand where the shared
/// patterns stood under the locks of that change.
Board replayed(const Trace &trace)
{
    Board board;
    EXPECT_LE(trace.count.load(), Trace::capacity);
    for (std::uint32_t k = 0; k < trace.count && !testing::Test::HasFailure(); ++k) {
        const Change &change = trace.changes[k];
        EXPECT_EQ(change.complete.load(), 1u);
        board.obey(change);
        const bool onAlike = std::memcmp(board.on.data(), change.mirrorOn, board.on.size()) == 0;
        const bool offAlike = std::memcmp(board.off.data(), change.mirrorOff, board.off.size()) == 0;
        EXPECT_TRUE(onAlike || change.request == 84) << "change " << k;
        EXPECT_TRUE(offAlike || change.request == 83) << "change " << k;
    }
    return board;
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
        startNewTrace();
        std::vector<Peer> peers = start(processes);
        for (std::size_t k = 0; k < processes; ++k)
            peers[k].tell("own " + std::to_string(2 * k) + " 2 " + std::to_string(changes));
        Pattern on = {}, off = {};
        for (Peer &peer : peers) {
            std::istringstream ends(peer.answer(longest));
            std::string ownOn, ownOff;
            ends >> ownOn >> ownOff;
            ASSERT_EQ(ownOff.size(), 10u) << ends.str();
            unite(on, patternOf(ownOn));
            unite(off, patternOf(ownOff));
        }
        const Board board = replayed(sharedTrace());
        rounds.note("changes", sharedTrace().count);
        EXPECT_EQ(sharedTrace().count, processes * static_cast<std::size_t>(changes));
        EXPECT_EQ(board.on, on);
        EXPECT_EQ(board.off, off);
        EXPECT_EQ(patternOf(peers[0].ask("on")), on);
        EXPECT_EQ(patternOf(peers[0].ask("off")), off);
        expectAllQuit(peers);
        expectNothingLeft();
    }
}

TEST_P(OneBoard, EightProcessesDrainOneStreamOnceAndInOrder)
{
    const std::size_t itemsEach = mixed() ? 1000 : 4000;
    for (Rounds rounds(named("one stream"), mixed() ? 1 : 3); rounds.another();) {
        startNewTrace();
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
