// Three reels: ramps, running, stopping at a count, and finding the index.
#include "tests/support/open_board.h"

namespace tests::reels
{

using namespace std::chrono_literals;

enum Motion : unsigned int { Still, RampingUp, Running, RampingDown };
constexpr unsigned int synchronised = 0x01;
constexpr unsigned int atIndex = 0x02;
constexpr unsigned int backward = 0x80;
constexpr unsigned int untilStopped = 0xFFFF;

class ReelScenario : public BoardScenario
{
protected:
    ReelStatusEx status()
    {
        ReelStatusEx all{};
        EXPECT_TRUE(usb.GetReelStatusEx(&all));
        return all;
    }

    void expectReel(int reel, unsigned int count, unsigned int left, unsigned int motion, unsigned int flags = 0)
    {
        const ReelStatusEx all = status();
        EXPECT_EQ(all.first[reel], count) << "steps of reel " << reel;
        EXPECT_EQ(all.second[reel], left) << "steps left of reel " << reel;
        EXPECT_EQ(all.third[reel], motion) << "motion of reel " << reel;
        EXPECT_EQ(all.fourth[reel], flags) << "flags of reel " << reel;
    }
};

INSTANTIATE_TEST_SUITE_P(Models, ReelScenario, testing::ValuesIn(everyModel), nameOfModel);

TEST_P(ReelScenario, AReelRampsUpRunsRampsDownAndStandsAtItsCount)
{
    EXPECT_TRUE(usb.ConfigureReelsEx(3, 400, 1));
    EXPECT_TRUE(usb.SpinRampUp(1, {3, {30, 20, 10}}));
    EXPECT_TRUE(usb.SpinRampDown(1, {2, {20, 40}}));
    EXPECT_TRUE(usb.SpinReels(1, 1, 300));
    const struct {
        sim::Nanoseconds pause;
        unsigned int count, left;
        Motion motion;
    } moments[] = {
        {0ms, 0, 300, RampingUp},    {50ms, 2, 298, RampingUp}, {10ms, 3, 297, Running},
        {1000ms, 103, 197, Running}, {1949ms, 297, 3, Running}, {1ms, 298, 2, RampingDown},
        {20ms, 299, 1, RampingDown}, {40ms, 300, 0, Still},     {10s, 300, 0, Still},
    };
    for (const auto &moment : moments) {
        testClock().advance(moment.pause);
        expectReel(1, moment.count, moment.left, moment.motion);
    }
    EXPECT_EQ(board.reels().at(1).place(), (91U + 300U) % 400U);
    usbReelStatus narrow{};
    EXPECT_TRUE(usb.GetReelStatus(&narrow));
    EXPECT_EQ(narrow.first[1], 300 - 256);
}

TEST_P(ReelScenario, ThreeReelsTurnEachOnItsOwn)
{
    EXPECT_TRUE(usb.ConfigureReels(3, 200, 0));
    EXPECT_TRUE(usb.SpinRampUp(1, {1, {8}}));
    EXPECT_TRUE(usb.SpinRampDown(2, {3, {50, 50, 50}}));
    EXPECT_TRUE(usb.SpinReels(0, 1, 100));
    EXPECT_TRUE(usb.SpinReels(1, 254, 0));
    testClock().advance(200ms);
    EXPECT_TRUE(usb.SpinReels(2, 255, 5));
    expectReel(0, 50, 50, Running);
    expectReel(1, 25, untilStopped, Running, backward);
    expectReel(2, 0, 5, Running, backward);
    EXPECT_TRUE(usb.SpinReels(1, 0, 0));
    testClock().advance(200ms);
    expectReel(0, 100, 0, Still);
    expectReel(1, 25, 0, Still);
    expectReel(2, 5, 0, Still);
    EXPECT_EQ(board.reels().at(2).place(), 135U);
}

TEST_P(ReelScenario, ASynchronisedReelCountsFromItsIndex)
{
    EXPECT_TRUE(usb.ConfigureReels(3, 200, 0));
    EXPECT_TRUE(usb.ReelSynchroniseEnable(1 << 2));
    EXPECT_TRUE(usb.SpinReels(0, 1, 500));
    EXPECT_TRUE(usb.SpinReels(2, 1, 500));
    testClock().advance(59 * 4ms);
    expectReel(2, 59, 441, Running);
    testClock().advance(11 * 4ms);
    expectReel(2, 10, 430, Running, synchronised);
    expectReel(0, 70, 430, Running);
    testClock().advance(10s);
    EXPECT_EQ(status().first[2], board.reels().at(2).place());
    EXPECT_EQ(status().first[0], 500) << "it has no index to count from";
}

TEST_P(ReelScenario, AReelThatTurnsBackFindsItsIndexAndStopsOnIt)
{
    EXPECT_TRUE(usb.ConfigureReels(3, 48, 0));
    EXPECT_TRUE(usb.ReelSynchroniseEnable(1));
    EXPECT_TRUE(usb.SpinReels(0, 254, 0));
    testClock().advance(sim::Nanoseconds(4ms) * 48 * 1000);
    expectReel(0, 48 - 37, untilStopped, Running, synchronised | backward);
    EXPECT_TRUE(usb.SpinReels(0, 0, 0));
    expectReel(0, 48 - 37, 0, Still, synchronised);
    EXPECT_TRUE(usb.SpinReels(0, 255, 37));
    testClock().advance(1s);
    expectReel(0, 0, 0, Still, synchronised | atIndex);
}

TEST_P(ReelScenario, AFewStepsUseTheEndOfTheRampOnly)
{
    EXPECT_TRUE(usb.ConfigureReels(1, 200, 0));
    EXPECT_TRUE(usb.SpinRampUp(0, {5, {9, 9, 9, 9, 9}}));
    EXPECT_TRUE(usb.SpinRampDown(0, {5, {10, 20, 30, 40, 50}}));
    EXPECT_TRUE(usb.SpinReels(0, 1, 3));
    testClock().advance(9ms + 40ms);
    expectReel(0, 2, 1, RampingDown);
    testClock().advance(50ms);
    expectReel(0, 3, 0, Still);
}

TEST_P(ReelScenario, ARampThatComesWhileAReelTurnsIsThatOfItsNextSpin)
{
    EXPECT_TRUE(usb.ConfigureReels(3, 200, 0));
    EXPECT_TRUE(usb.SpinReels(0, 1, 10));
    EXPECT_TRUE(usb.SpinRampUp(0, {1, {20}}));
    EXPECT_TRUE(usb.SpinRampDown(0, {1, {50}}));
    testClock().advance(40ms);
    expectReel(0, 10, 0, Still);
    EXPECT_TRUE(usb.SpinReels(0, 1, 3));
    testClock().advance(40ms);
    expectReel(0, 12, 1, RampingDown);
    testClock().advance(50ms);
    expectReel(0, 13, 0, Still);
}

TEST_P(ReelScenario, OnlyAConfiguredDriveTurns)
{
    EXPECT_EQ(errorOf(usb, usb.SpinReels(0, 1, 10)), sim::statusNotConfigured);
    EXPECT_TRUE(usb.ConfigureReels(2, 200, 0));
    EXPECT_TRUE(usb.SpinReels(1, 1, 10));
    EXPECT_EQ(errorOf(usb, usb.SpinReels(2, 1, 10)), sim::statusNotConfigured);
    EXPECT_EQ(errorOf(usb, usb.SpinReels(3, 1, 10)), sim::statusWrongValue);
    EXPECT_TRUE(usb.ConfigureReels(0, 200, 0));
    expectReel(1, 0, 0, Still);
}

}  // namespace tests::reels
