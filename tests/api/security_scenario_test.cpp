// Clock, battery, switch log, random numbers and identities.
#include "tests/support/open_board.h"

namespace tests::security
{

using namespace std::chrono_literals;

class SecurityScenario : public BoardScenario
{
protected:
    unsigned long clock()
    {
        unsigned long time = 0;
        EXPECT_TRUE(usb.GetClock(&time));
        return time;
    }

    /// The whole log, "time/switches" an event, and the error that ends it.
    std::string walk()
    {
        EXPECT_TRUE(usb.StartSecuritySwitchRead());
        std::string events;
        unsigned long time = 0;
        unsigned char switches = 0;
        for (int k = 0; k < 100 && usb.NextSecuritySwitchRead(&time, &switches); ++k)
            events += std::to_string(time) + "/" + hex(&switches, 1) + " ";
        return events + "error " + std::to_string(usb.GetLastError());
    }

    using ReadFlag = int (SorvaneUSB::*)(unsigned char *);
    /// What the flag reads, or its error.
    std::string flag(ReadFlag read)
    {
        unsigned char value = 9;
        return (usb.*read)(&value) ? std::to_string(value) : "error " + std::to_string(usb.GetLastError());
    }
};

INSTANTIATE_TEST_SUITE_P(Models, SecurityScenario, testing::ValuesIn(everyModel), nameOfModel);

TEST_P(SecurityScenario, TheClockRunsFromWhatItWasSetTo)
{
    EXPECT_TRUE(usb.SetClock(0xFEDCBA98));
    testClock().advance(3s);
    EXPECT_EQ(clock(), 0xFEDCBA9BU);
}

TEST_P(SecurityScenario, FailuresOfBatteryAndClockAreToldOnceWhereTheModelCan)
{
    const bool r20 = GetParam() == sim::Model::R20;
    const bool r35 = GetParam() == sim::Model::R35;
    EXPECT_TRUE(usb.SetClock(5000));
    testClock().advance(7s);
    board.battery().fail();
    testClock().advance(60s);
    board.clock().fail();
    EXPECT_EQ(flag(&SorvaneUSB::ReadAndResetBatteryFailFlag), r20 ? "error 25" : "1");
    EXPECT_EQ(flag(&SorvaneUSB::ReadAndResetBatteryFailFlag), r20 ? "error 25" : "0");
    EXPECT_EQ(flag(&SorvaneUSB::ReadAndResetRTCFailure), r35 ? "1" : r20 ? "error 25" : "error 26");
    EXPECT_EQ(flag(&SorvaneUSB::ReadAndResetRTCFailure), r35 ? "0" : r20 ? "error 25" : "error 26");
    unsigned long failedAt = 9;
    EXPECT_EQ(usb.ReadClockAtBatteryFailure(&failedAt), r35 ? 1 : 0);
    EXPECT_EQ(failedAt, r35 ? 5007U : 9U);
}

TEST_P(SecurityScenario, TheSwitchLogIsWalkedToItsEndAsOftenAsAsked)
{
    const std::string end = "error " + std::to_string(sim::statusNothingMore);
    EXPECT_EQ(walk(), end);
    EXPECT_TRUE(usb.SetClock(1000));
    board.switches().open(0);
    testClock().advance(10s);
    board.switches().open(7);
    board.switches().close(0);
    board.switches().close(0);  // nothing new
    EXPECT_EQ(walk(), "1000/01 1010/81 1010/80 " + end);
    EXPECT_EQ(walk(), "1000/01 1010/81 1010/80 " + end);
    EXPECT_TRUE(usb.ClearSecuritySwitches());
    EXPECT_EQ(walk(), end);
    board.switches().open(1);
    EXPECT_EQ(walk(), "1010/82 " + end);
}

TEST_P(SecurityScenario, WithoutPowerABatteryThatFailsLosesEverythingItHeld)
{
    for (const bool failsFirst : {true, false}) {
        SCOPED_TRACE(failsFirst);
        unsigned char byte = 0x55;
        EXPECT_TRUE(usb.WriteSRAM(100, &byte, 1));
        EXPECT_TRUE(usb.SetClock(1000));
        board.switches().open(0);
        EXPECT_EQ(walk().substr(0, 8), "1000/01 ");
        if (failsFirst)
            board.battery().fail();
        EXPECT_EQ(clock(), 1000U) << "as long as there is power nothing is lost";
        board.unplug();
        testClock().advance(10s);
        board.battery().fail();
        board.switches().open(1);
        testClock().advance(50s);
        board.plug();
        EXPECT_TRUE(usb.InitPort(0));
        testClock().advance(3s);
        EXPECT_EQ(clock(), 3U);
        EXPECT_EQ(walk(), "error " + std::to_string(sim::statusNothingMore)) << "nobody was awake to log";
        unsigned char flags[2] = {9, 9};
        EXPECT_TRUE(usb.ReadAndResetSecuritySwitchFlags(&flags[0], &flags[1]));
        EXPECT_EQ(hex(flags, 2), "00 00");
        EXPECT_TRUE(usb.ReadSRAM(100, &byte, 1));
        EXPECT_EQ(byte, 0);
        unsigned long failedAt = 0;
        if (GetParam() == sim::Model::R35) {
            EXPECT_TRUE(usb.ReadClockAtBatteryFailure(&failedAt));
            EXPECT_EQ(failedAt, failsFirst ? 1000U : 1010U);
            EXPECT_EQ(flag(&SorvaneUSB::ReadAndResetRTCFailure), "1");
        }
        board.battery().replace();
        board.switches().close(0);
        board.switches().close(1);
        EXPECT_TRUE(usb.ClearSecuritySwitches());
    }
}

TEST_P(SecurityScenario, FlagsAreResetByBeingReadEachSetApart)
{
    board.switches().open(2);
    board.switches().close(2);
    board.switches().open(1);
    unsigned char flags[2] = {};
    for (const char *expected : {"06 04", "00 00"}) {
        EXPECT_TRUE(usb.ReadAndResetSecuritySwitchFlags(&flags[0], &flags[1]));
        EXPECT_EQ(hex(flags, 2), expected);
        EXPECT_TRUE(usb.CachedReadAndResetSecuritySwitchFlags(&flags[0], &flags[1]));
        EXPECT_EQ(hex(flags, 2), expected);
    }
}

TEST_P(SecurityScenario, RandomNumbersComeWhileTheGeneratorIsOn)
{
    unsigned short number = 9;
    EXPECT_EQ(errorOf(usb, usb.GetRandomNumber(&number)), sim::statusDisabled);
    const auto draw = [&](unsigned long setting) {
        EXPECT_TRUE(usb.EnableRandomNumberGenerator(setting));
        std::vector<int> numbers;
        for (int k = 0; k < 8; ++k) {
            EXPECT_TRUE(usb.GetRandomNumber(&number));
            numbers.push_back(number);
        }
        return numbers;
    };
    const std::vector<int> numbers = draw(0x81020304);
    EXPECT_NE(numbers[0], numbers[1]);
    EXPECT_EQ(draw(0x81020304), numbers);
    EXPECT_NE(draw(0x01020304), numbers) << "the highest bit reaches the board";
    EXPECT_TRUE(usb.DisableRandomNumberGenerator());
    EXPECT_FALSE(usb.GetRandomNumber(&number));
}

TEST_P(SecurityScenario, TheBoardTellsWhoItIs)
{
    unsigned char text[usbLargestAnswer] = {};
    EXPECT_TRUE(usb.Get8051Version(text));
    EXPECT_EQ(reinterpret_cast<char *>(text), std::string("Virtual ") + nameOf(GetParam()) + " 1.0");
    EXPECT_TRUE(usb.GetPICVersion(text));
    EXPECT_STREQ(reinterpret_cast<char *>(text), "Virtual PIC 1.0");
    unsigned char serial[] = {1, 2, 3, 4, 5, 6, 7, 0xFF};
    EXPECT_TRUE(usb.SetPICSerialNumber(serial));
    EXPECT_TRUE(usb.GetPICSerialNumber(text));
    EXPECT_EQ(hex(text, 8), "01 02 03 04 05 06 07 FF");
}

TEST_P(SecurityScenario, EveryWrongBitOfTheOneWireNumberIsNoticed)
{
    if (GetParam() == sim::Model::R20)
        return;  // it has no such chip
    board.identity().setSerialDallas(0x060504030201);
    const sim::SerialNumber right = board.identity().serialDallas();
    unsigned char number[usbLargestAnswer];
    unsigned char valid = 9;
    EXPECT_TRUE(usb.GetDallasSerialNumber(number, &valid));
    EXPECT_EQ(hex(number, 7), "01 01 02 03 04 05 06");
    EXPECT_EQ(valid, 1);
    for (unsigned int bit = 0; bit < 64; ++bit) {
        sim::SerialNumber wrong = right;
        wrong[bit / 8] ^= static_cast<unsigned char>(1 << bit % 8);
        board.identity().setSerialDallas(wrong);
        EXPECT_TRUE(usb.GetDallasSerialNumber(number, &valid));
        EXPECT_EQ(valid, 0) << "bit " << bit;
    }
}

}  // namespace tests::security
