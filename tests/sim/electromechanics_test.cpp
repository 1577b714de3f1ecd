// Inputs, outputs, pulses, hoppers, reels and the recorder, as time passes.
#include "tests/sim/sim_test.h"

namespace sim
{
namespace
{

using namespace std::chrono_literals;

using IOTest = EveryModel;
INSTANTIATE_TEST_SUITE_P(Models, IOTest, testing::ValuesIn(everyModel), nameOfParameter);

TEST_P(IOTest, InputsStandAtTheirBits)
{
    board.boardNumber(5);
    board.inputs().set(0, true);
    board.inputs().set(15, true);
    board.inputs().set(32, true);
    EXPECT_EQ(ask(75, 1), (Bytes{0x01, 0x80, 0, 0x05, 0x01}));
    EXPECT_EQ(ask(82, 1), (Bytes{0x01, 0x80, 0, 0x05, 0x01}));
}

TEST_P(IOTest, ChangedInputsAreThoseThatDifferSinceLastAsked)
{
    board.boardNumber(2);
    EXPECT_EQ(ask(81, 1), (Bytes{0, 0, 0, 0, 0}));
    board.inputs().set(9, true);
    EXPECT_EQ(ask(81, 1), (Bytes{0, 2, 0, 0, 0}));
    EXPECT_EQ(ask(81, 1), (Bytes{0, 0, 0, 0, 0}));
    board.inputs().set(9, false);
    EXPECT_EQ(ask(81, 1), (Bytes{0, 2, 0, 0, 0}));
}

TEST_P(IOTest, MultiplexedInputsComeWhileTheyAreScanned)
{
    board.inputs().setMultiplexed(1, 0, 0x44);
    board.inputs().setMultiplexed(3, 2, 0xCC);
    EXPECT_EQ(ask(115, 1), Bytes(13));
    ask(114, 1, {1});
    EXPECT_EQ(ask(115, 1), (Bytes{1, 0, 0, 0, 0x44, 0, 0, 0, 0, 0, 0, 0, 0xCC}));
}

TEST_P(IOTest, OutputsAreSwitchedAndFlash)
{
    ask(77, 1, {0x03, 0, 0, 0, 0x20, 0x02, 0, 0, 0, 0});
    EXPECT_TRUE(board.outputs().lit(0));
    EXPECT_FALSE(board.outputs().lit(1)) << "on and off at once ends off";
    EXPECT_TRUE(board.outputs().lit(37));
    ask(83, 1, {0x01, 0x10, 0, 0, 0});
    ask(84, 1, {0x01, 0x20, 0, 0, 0xFF});
    const struct {
        Nanoseconds pause;
        bool steady, onOnly, offOnly;
    } phases[] = {
        {0ms, true, true, false}, {500ms, true, false, true}, {499ms, true, false, true}, {1ms, true, true, false}};
    for (const auto &phase : phases) {
        pass(phase.pause);
        EXPECT_EQ(board.outputs().lit(0), phase.steady);
        EXPECT_EQ(board.outputs().lit(12), phase.onOnly);
        EXPECT_EQ(board.outputs().lit(13), phase.offOnly);
    }
    EXPECT_EQ(board.state().outputsOffPeriod, (Pattern{0x01, 0x20, 0, 0, 0xFF}));
    EXPECT_EQ(board.state().outputsLit[4], 0) << "two bits name no output";
}

TEST_P(IOTest, PulsesEndByThemselves)
{
    ask(77, 1, {0x10, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    ask(78, 1, {3, 31});
    ask(79, 1, {5, 4});
    EXPECT_TRUE(board.outputs().lit(31));
    EXPECT_FALSE(board.outputs().lit(4));
    EXPECT_EQ(ask(80, 1), (Bytes{2, 4, 0}));
    pass(30ms);
    EXPECT_FALSE(board.outputs().lit(31));
    EXPECT_FALSE(board.outputs().lit(4));
    ask(79, 1, {5, 4});
    pass(20ms);
    EXPECT_FALSE(board.outputs().lit(4)) << "the second pulse goes on";
    pass(30ms);
    EXPECT_TRUE(board.outputs().lit(4));
    EXPECT_EQ(ask(80, 1), (Bytes{0, 4, 2}));
}

TEST_P(IOTest, ACounterCountsPulsesWhileItsCheckIsOn)
{
    const bool r20 = GetParam() == Model::R20;
    board.inputs().pulse(3, 2);
    pass(1s);
    ask(107, 1, r20 ? Bytes{3, 9, 0} : Bytes{3, 9, 0, 7});
    ask(108, 1, {3, 1});
    board.inputs().pulse(3, 5);
    pass(60ms);
    EXPECT_EQ(ask(111, 1, {3}), Bytes{2}) << "active low: two pulses have begun to end";
    pass(1s);
    EXPECT_EQ(ask(111, 1, {3}), Bytes{5});
    ask(110, 1, {3});
    EXPECT_EQ(ask(111, 1, {3}), Bytes{4});
    ask(108, 1, {3, 0});
    board.inputs().pulse(3);
    pass(1s);
    EXPECT_EQ(ask(111, 1, {3}), Bytes{4});
    ask(109, 1, {3});
    ask(110, 1, {3});
    EXPECT_EQ(ask(111, 1, {3}), Bytes{0});
    ask(108, 1, {3, 1});
    board.inputs().pulse(3, 258);
    pass(20s);
    EXPECT_EQ(ask(111, 1, {3}), Bytes{2});
}

class HopperTest : public EveryModel
{
public:
    void release(unsigned int coins)
    {
        const bool r20 = GetParam() == Model::R20;
        Bytes payload{5, 20, 1, 37, highByte(coins), lowByte(coins), 9};
        if (!r20)
            payload.push_back(0);
        ask(112, 1, payload);
    }

    Bytes status() { return ask(113, 1, {5}); }
};
INSTANTIATE_TEST_SUITE_P(Models, HopperTest, testing::ValuesIn(everyModel), nameOfParameter);

TEST_P(HopperTest, PaysWhatItIsAskedAndStops)
{
    board.hopper(5, 20);
    ask(108, 1, {5, 1});
    release(3);
    EXPECT_TRUE(board.outputs().lit(37));
    pass(450ms);
    EXPECT_EQ(status(), (Bytes{hopperActive, 2}));
    pass(1s);
    EXPECT_EQ(status(), (Bytes{hopperPaid, 3}));
    EXPECT_FALSE(board.outputs().lit(37));
    EXPECT_EQ(ask(111, 1, {5}), Bytes{3}) << "the coins passed the input";
    EXPECT_EQ(board.hoppers().at(5).stock(), 17U);
}

TEST_P(HopperTest, WithThreeCoinsAskedForFivePaysThreeAndStops)
{
    board.hoppers().at(5).stock(3);
    release(5);
    pass(2500ms);
    EXPECT_EQ(status(), (Bytes{hopperActive, 3}));
    pass(500ms);
    EXPECT_EQ(status(), (Bytes{hopperRanOut, 3}));
    EXPECT_FALSE(board.outputs().lit(37));
}

TEST_P(HopperTest, AJamAndACutDriveStopTheCoins)
{
    board.hopper(5, 20);
    release(5);
    pass(250ms);
    board.hoppers().at(5).jam();
    pass(1s);
    EXPECT_EQ(status(), (Bytes{hopperActive, 1}));
    EXPECT_EQ(board.state().hoppers.at(0).jammed, true);
    board.hoppers().at(5).jam(false);
    pass(250ms);
    EXPECT_EQ(status(), (Bytes{hopperActive, 2}));
    ask(77, 1, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0x20});
    pass(3s);
    EXPECT_EQ(status(), (Bytes{hopperRanOut, 2}));
    EXPECT_EQ(board.hoppers().at(5).stock(), 18U);
}

TEST_P(HopperTest, StopsWhenToldWhereTheModelCan)
{
    board.hopper(5, 20);
    release(300);
    EXPECT_EQ(refusal(112, 1, GetParam() == Model::R20 ? Bytes{5, 0, 1, 0, 0, 1, 0} : Bytes{5, 0, 1, 0, 0, 1, 0, 0}),
              statusBusy);
    pass(500ms);
    if (GetParam() == Model::R20) {
        EXPECT_EQ(refusal(124, 1, {5}), statusUnknownRequest);
        return;
    }
    ask(124, 1, {5});
    pass(1s);
    EXPECT_EQ(status(), (Bytes{hopperStopped, 2}));
    release(1);
    pass(1s);
    EXPECT_EQ(status(), (Bytes{hopperPaid, 1}));
}

class ReelTest : public EveryModel
{
public:
    // first, second, third and fourth of a reel
    Bytes status(int reel)
    {
        const Bytes all = ask(92, 1);
        EXPECT_EQ(all.size(), 18U);
        return {all.begin() + 6 * reel, all.begin() + 6 * reel + 6};
    }
};
INSTANTIATE_TEST_SUITE_P(Models, ReelTest, testing::ValuesIn(everyModel), nameOfParameter);

TEST_P(ReelTest, RampsUpRunsAndRampsDown)
{
    ask(86, 1, {3, 0, 200, 1});
    ask(88, 1, {1, 3, 30, 20, 10});
    ask(89, 1, {1, 2, 20, 40});
    ask(87, 1, {1, 1, 0, 10});
    pass(50ms);
    EXPECT_EQ(status(1), (Bytes{0, 2, 0, 8, 1, 0}));
    pass(10ms);
    EXPECT_EQ(status(1), (Bytes{0, 3, 0, 7, 2, 0}));
    pass(50ms);
    EXPECT_EQ(status(1), (Bytes{0, 8, 0, 2, 3, 0}));
    pass(20ms);
    EXPECT_EQ(status(1), (Bytes{0, 9, 0, 1, 3, 0}));
    pass(40ms);
    EXPECT_EQ(status(1), (Bytes{0, 10, 0, 0, 0, 0}));
    EXPECT_EQ(board.reels().at(1).place(), 101U);
}

TEST_P(ReelTest, SpinsUntilStoppedAndSynchronisesOnItsIndex)
{
    ask(86, 1, {3, 0, 48, 0});
    ask(91, 1, {1});
    ask(87, 1, {0, 254, 0, 0});
    ask(87, 1, {2, 2, 0, 0});
    pass(Nanoseconds(4ms) * 48 * 1000);
    EXPECT_EQ(status(0), (Bytes{0, 48 - 37, 0xFF, 0xFF, 2, 0x81})) << "37 steps backward to the index";
    EXPECT_EQ(status(2)[4], 2);
    ask(87, 1, {0, 0, 0, 0});
    EXPECT_EQ(status(0), (Bytes{0, 48 - 37, 0, 0, 0, 1})) << "no ramp: at once";
    ask(87, 1, {0, 255, 0, 37});
    pass(1s);
    EXPECT_EQ(status(0), (Bytes{0, 0, 0, 0, 0, 3}));
}

TEST_P(ReelTest, AFewStepsUseTheEndOfTheRampOnly)
{
    ask(88, 1, {0, 5, 9, 9, 9, 9, 9});
    ask(89, 1, {0, 5, 10, 20, 30, 40, 50});
    ask(87, 1, {0, 1, 0, 3});
    pass(9ms + 40ms);
    EXPECT_EQ(status(0), (Bytes{0, 2, 0, 1, 3, 0}));
    pass(50ms);
    EXPECT_EQ(status(0), (Bytes{0, 3, 0, 0, 0, 0}));
    EXPECT_EQ(refusal(88, 1, {0, 5, 9}), statusWrongLength);
}

class RecorderTest : public EveryModel
{
};
INSTANTIATE_TEST_SUITE_P(Banked, RecorderTest, testing::Values(Model::R20s, Model::R35), nameOfParameter);

TEST_P(RecorderTest, SamplesItsInputsIntoTheSRAM)
{
    EXPECT_EQ(refusal(126, 1, {0, 100}), statusNotConfigured);
    ask(125, 1, {2, 255, 7, 255, 12, 0x3F, 0xFE, 0, 4});
    EXPECT_EQ(ask(127, 1), (Bytes{1, 0, 0, 0, 4}));
    board.inputs().set(7, true);
    ask(126, 1, {0, 100});
    pass(15ms);
    EXPECT_EQ(ask(127, 1), (Bytes{2, 0, 2, 0, 2}));
    board.inputs().set(2, true);
    pass(100ms);
    EXPECT_EQ(ask(127, 1), (Bytes{3, 0, 4, 0, 0}));
    EXPECT_EQ(ask(116, 6, {2, 0, 12, 0xFE, 0x3F}), (Bytes{4, 4}));
    EXPECT_EQ(ask(116, 6, {2, 0, 16, 0, 0}), (Bytes{5, 5})) << "the firmware's pages are stepped over";
    EXPECT_EQ(refusal(125, 1, {255, 255, 255, 255, 1, 0, 0, 0, 4}), statusWrongValue);
    EXPECT_EQ(refusal(125, 1, {24, 255, 255, 255, 1, 0, 0, 0, 4}), statusWrongValue);
}

}  // namespace
}  // namespace sim
