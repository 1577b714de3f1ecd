// Lamps on outputs: steady, flashing, pulsed and dimmed, as they show on the board while the time goes by.
#include "tests/support/open_board.h"

#include <cerrno>

namespace tests::lamps
{

using namespace std::chrono_literals;

class LampScenario : public BoardScenario
{
protected:
    // The kept patterns belong to the device number, not to the board that was plugged for this test.
    LampScenario()
    {
        usb.SetOnPeriodOutputs({});
        usb.SetOffPeriodOutputs({});
        board.clearExchanges();
    }

    bool lit(unsigned int output) { return board.outputs().lit(output); }
};

INSTANTIATE_TEST_SUITE_P(Models, LampScenario, testing::ValuesIn(everyModel), nameOfModel);

TEST_P(LampScenario, ALampIsSteadilyLitUntilItIsSwitchedOff)
{
    for (const unsigned int output : {0U, 9U, 31U, 37U}) {
        EXPECT_TRUE(usb.SetOutputBit(_usbOutputBitId(output), 1));
        sim::Pattern alone{};
        sim::put(alone, output, true);
        EXPECT_EQ(board.outputs().litNow(), alone) << output;
        testClock().advance(sim::flashPeriod);
        EXPECT_EQ(board.outputs().litNow(), alone) << output << " in the other period";
        EXPECT_TRUE(usb.SetOutputBit(_usbOutputBitId(output), 0));
        EXPECT_FALSE(lit(output));
    }
}

TEST_P(LampScenario, ALampOfOnePeriodFlashesAndOneOfBothDoesNot)
{
    EXPECT_TRUE(usb.SetOnPeriodOutputBit(usbOutputByte1, 4, 1));
    EXPECT_TRUE(usb.SetOffPeriodOutputBit(usbOutputByte1, 5, 1));
    EXPECT_TRUE(usb.SetOnPeriodOutputBit(usbOutputByte4, 5, 1));
    EXPECT_TRUE(usb.SetOffPeriodOutputBit(usbOutputByte4, 5, 1));
    bool onPeriod = board.outputs().inOnPeriod();
    for (int half = 0; half < 5; ++half) {
        EXPECT_EQ(lit(12), onPeriod);
        EXPECT_EQ(lit(13), !onPeriod);
        EXPECT_TRUE(lit(37));
        testClock().advance(500ms);
        onPeriod = !onPeriod;
    }
}

TEST_P(LampScenario, ABitOfAPeriodIsSentTogetherWithWhatWasSwitchedBefore)
{
    EXPECT_TRUE(usb.SetOutputBit(usbOutput10, 1));
    EXPECT_TRUE(usb.SetOnPeriodOutputBit(usbOutputByte0, 0, 1));
    EXPECT_EQ(wire(board), "77/1 00 04 00 00 00 00 00 00 00 00; 83/1 01 04 00 00 00");
    if (!board.outputs().inOnPeriod())
        testClock().advance(sim::flashPeriod);
    EXPECT_EQ(board.outputs().litNow(), (sim::Pattern{0x01, 0x04, 0, 0, 0}));
    testClock().advance(sim::flashPeriod);
    EXPECT_EQ(board.outputs().litNow(), (sim::Pattern{0, 0x04, 0, 0, 0}));
}

TEST_P(LampScenario, WhatAFailedExchangeAskedForIsSentWithTheNextBit)
{
    board.faults().add(sim::Fault::ioctlFails(EIO).on(83));
    EXPECT_EQ(errorOf(usb, usb.SetOnPeriodOutputBit(usbOutputByte1, 4, 1)), usbErrorTransfer);
    board.faults().add(sim::Fault::status(0x21).on(77));
    EXPECT_FALSE(usb.SetOutputBit(usbOutput37, 1));
    EXPECT_EQ(board.outputs().onPattern(), sim::Pattern{}) << "the board has seen nothing of it";
    board.clearExchanges();
    EXPECT_FALSE(usb.SetOnPeriodOutputBit(usbOutputByte4, 6, 1)) << "a wrong bit is not kept";
    EXPECT_TRUE(usb.SetOnPeriodOutputBit(usbOutputByte0, 0, 1));
    EXPECT_TRUE(usb.SetOffPeriodOutputBit(usbOutputByte2, 7, 1));
    EXPECT_EQ(wire(board), "83/1 01 10 00 00 20; 84/1 00 00 80 00 20");
}

TEST_P(LampScenario, EachDeviceHasPatternsOfItsOwn)
{
    OpenBoard other(GetParam(), 15);
    EXPECT_TRUE(other.usb.SetOnPeriodOutputs({}));
    EXPECT_TRUE(usb.SetOnPeriodOutputs({{0xFF, 0xFF, 0xFF, 0xFF, 0xFF}}));
    other.board.clearExchanges();
    EXPECT_TRUE(other.usb.SetOnPeriodOutputBit(usbOutputByte0, 1, 1));
    EXPECT_EQ(wire(other.board), "83/1 02 00 00 00 00");
}

TEST_P(LampScenario, APulseEndsByItselfAndIsReported)
{
    unsigned char running = 9;
    unsigned int last = 9;
    unsigned int ended = 9;
    EXPECT_TRUE(usb.SetOutputBit(usbOutput4, 1));
    EXPECT_TRUE(usb.PulseOutput(31, 3));
    EXPECT_TRUE(usb.PulseOffOutput(4, 5));
    EXPECT_TRUE(lit(31));
    EXPECT_FALSE(lit(4));
    EXPECT_TRUE(usb.PulseOutputResult(&running, &last, &ended));
    EXPECT_EQ(running, 2);
    EXPECT_EQ(last, 4U);
    EXPECT_EQ(ended, 0U);
    testClock().advance(30ms);
    EXPECT_FALSE(lit(31));
    EXPECT_FALSE(lit(4));
    EXPECT_TRUE(usb.PulseOffOutput(4, 5));
    testClock().advance(20ms);
    EXPECT_FALSE(lit(4)) << "the second pulse goes on";
    testClock().advance(30ms);
    EXPECT_TRUE(lit(4)) << "it was on before its pulse";
    EXPECT_TRUE(usb.PulseOutputResult(&running, &last, &ended));
    EXPECT_EQ(running, 0);
    EXPECT_EQ(ended, 2U);
}

}  // namespace tests::lamps
