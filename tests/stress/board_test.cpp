// One board driven by many processes at once: no change is lost, none overtakes another, no item comes twice.
#include <algorithm>
#include <array>
#include <cstring>
#include <sstream>
#include <vector>

#include "tests/stress/outside.h"
#include "tests/stress/recording_driver.h"

namespace stress
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
    void obey(const Record &record)
    {
        if (record.request == 83)
            std::memcpy(on.data(), record.payload, on.size());
        if (record.request == 84)
            std::memcpy(off.data(), record.payload, off.size());
        for (std::size_t k = 0; record.request == 77 && k < on.size(); ++k) {
            on[k] = static_cast<std::uint8_t>((on[k] | record.payload[k]) & ~record.payload[5 + k]);
            off[k] = static_cast<std::uint8_t>((off[k] | record.payload[k]) & ~record.payload[5 + k]);
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
        const Record &record = trace.records[k];
        EXPECT_EQ(record.complete.load(), 1u);
        board.obey(record);
        const bool onAlike = std::memcmp(board.on.data(), record.mirrorOn, board.on.size()) == 0;
        const bool offAlike = std::memcmp(board.off.data(), record.mirrorOff, board.off.size()) == 0;
        EXPECT_TRUE(onAlike || record.request == 84) << "change " << k;
        EXPECT_TRUE(offAlike || record.request == 83) << "change " << k;
    }
    return board;
}

std::vector<Peer> startWorkers(std::size_t count, bool mixed)
{
    std::vector<Peer> workers;
    for (std::size_t k = 0; k < count; ++k) {
#ifdef OTHER_WIDTH_WORKER
        workers.emplace_back(mixed && k % 2 ? OTHER_WIDTH_WORKER : STRESS_WORKER);
#else
        EXPECT_FALSE(mixed);
        workers.emplace_back(STRESS_WORKER);
#endif
    }
    for (Peer &worker : workers)
        EXPECT_EQ(askInTime(worker, "open"), "0");
    return workers;
}

void changeTogether(const char *what, std::size_t processes, int changes, int few, bool mixed)
{
    constexpr int outputsEach = 2;
    for (Rounds rounds(what, few); rounds.another();) {
        startNewTrace();
        std::vector<Peer> workers = startWorkers(processes, mixed);
        for (std::size_t k = 0; k < processes; ++k)
            workers[k].tell("own " + std::to_string(outputsEach * k) + " 2 " + std::to_string(changes));
        Pattern on = {}, off = {};
        for (Peer &worker : workers) {
            std::istringstream ends(answerOf(worker, 60000));
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
        EXPECT_EQ(patternOf(askInTime(workers[0], "on")), on);
        EXPECT_EQ(patternOf(askInTime(workers[0], "off")), off);
        for (Peer &worker : workers)
            EXPECT_TRUE(worker.quit());
        expectNothingLeft("all left");
    }
}

class OneBoard : public Stress
{
};

TEST_F(OneBoard, SixteenProcessesLoseNoChange)
{
    changeTogether("no lost change", 16, 500, 3, false);
}

#ifdef OTHER_WIDTH_WORKER
TEST_F(OneBoard, SixteenOfBothWidthsLoseNoChange)
{
    changeTogether("no lost change between both widths", 16, 200, 1, true);
}
#endif

void drainTogether(const char *what, int itemsEach, int few, bool mixed)
{
    for (Rounds rounds(what, few); rounds.another();) {
        startNewTrace();
        std::vector<Peer> workers = startWorkers(8, mixed);
        for (Peer &worker : workers)
            worker.tell("drain " + std::to_string(itemsEach));
        std::vector<int> all;
        for (Peer &worker : workers) {
            std::istringstream numbers(answerOf(worker, 60000));
            std::vector<int> own;
            for (int number; numbers >> number;)
                own.push_back(number);
            EXPECT_EQ(own.size(), static_cast<std::size_t>(itemsEach)) << numbers.str();
            EXPECT_TRUE(std::is_sorted(own.begin(), own.end())) << "out of order";
            all.insert(all.end(), own.begin(), own.end());
        }
        std::sort(all.begin(), all.end());
        for (std::size_t k = 0; k < all.size(); ++k)
            ASSERT_EQ(all[k], static_cast<int>(k)) << "an item lost or handed out twice";
        rounds.note("items", all.size());
        for (Peer &worker : workers)
            EXPECT_TRUE(worker.quit());
        expectNothingLeft("all left");
    }
}

TEST_F(OneBoard, EightProcessesDrainOneStreamOnceAndInOrder)
{
    drainTogether("one stream", 4000, 3, false);
}

#ifdef OTHER_WIDTH_WORKER
TEST_F(OneBoard, EightOfBothWidthsDrainOneStreamOnceAndInOrder)
{
    drainTogether("one stream between both widths", 1000, 1, true);
}
#endif

}  // namespace

}  // namespace stress
