// A board that is pulled off while it is in use, and what it takes to go on when it is back.
#include "tests/support/open_board.h"

namespace tests::unplug
{

class UnplugScenario : public BoardScenario
{
protected:
    bool answers(SorvaneUSB &which)
    {
        which.ClearErrors();
        usbInput inputs{};
        if (which.GetInputs(&inputs))
            return true;
        EXPECT_EQ(which.GetLastError(), usbErrorTransfer);
        return false;
    }

    unsigned int requestsSeen(unsigned char request)
    {
        unsigned int count = 0;
        for (const sim::Exchange &exchange : board.exchanges())
            count += exchange.request == request ? 1 : 0;
        return count;
    }
};

INSTANTIATE_TEST_SUITE_P(Models, UnplugScenario, testing::ValuesIn(everyModel), nameOfModel);

TEST_P(UnplugScenario, AnOperationInTheMiddleFailsAndSoDoesEverythingAfterIt)
{
    unsigned char data[1024] = {};
    unsigned long length = 0;
    R20EEPROM chip{};
    const bool r20 = GetParam() == sim::Model::R20;
    const struct {
        const char *name;
        unsigned char request;
        std::function<int()> call;
    } operations[] = {
        {"Send", 98, [&] { return usb.Send(usbSerialPort0, data, 200); }},
        {"Receive", 99, [&] { return usb.Receive(usbSerialPort1, data, &length); }},
        {"WriteSRAM", static_cast<unsigned char>(r20 ? 71 : 117), [&] { return usb.WriteSRAM(0, data, 600); }},
        {"ReadLargeSRAM", static_cast<unsigned char>(r20 ? 70 : 116), [&] { return usb.ReadLargeSRAM(0, data, 600); }},
        {"WriteEEPROM", 4, [&] { return usb.WriteEEPROM(8, data, 110); }},
        {"ReadEEPROM", 5, [&] { return usb.ReadEEPROM(8, data, 110); }},
        {"CheckEEPROM", 5, [&] { return usb.CheckEEPROM(&chip); }},
    };
    for (const auto &each : operations) {
        SCOPED_TRACE(each.name);
        R20EEPROM fitted = E24LC256;
        EXPECT_TRUE(usb.ConfigureEEPROM(&fitted));
        board.serialPort(1).deliver(sim::Bytes(5, 1));
        testClock().advance(std::chrono::seconds(1));
        board.faults().add(sim::Fault::unplug().on(each.request).skip(1));
        board.clearExchanges();
        EXPECT_EQ(errorOf(usb, each.call()), usbErrorTransfer);
        EXPECT_EQ(requestsSeen(each.request), 1U);
        EXPECT_FALSE(answers(usb));
        EXPECT_FALSE(usb.InitPort(0)) << "there is no such board now";
        board.plug();
        EXPECT_FALSE(answers(usb)) << "what was open stays open on the board that is gone";
        ASSERT_TRUE(usb.InitPort(0));
        EXPECT_TRUE(answers(usb));
    }
}

TEST_P(UnplugScenario, OpeningTheBoardAgainLoadsItsFirmwareButCopiesStayDead)
{
    SorvaneUSB copy(usb);
    board.unplug();
    board.plug();
    EXPECT_FALSE(board.firmware().running());
    EXPECT_FALSE(answers(usb));
    board.clearExchanges();
    ASSERT_TRUE(usb.InitPort(0));
    EXPECT_EQ(requestsSeen(72), 1U);
    EXPECT_EQ(requestsSeen(73), 1U);
    EXPECT_TRUE(board.firmware().running());
    EXPECT_TRUE(answers(usb));
    EXPECT_FALSE(answers(copy));
    copy.close();
    EXPECT_TRUE(answers(usb)) << "it shares nothing with the copy any more";
}

TEST_P(UnplugScenario, TheEEPROMIsReachedAgainAfterItWasConfiguredAgain)
{
    R20EEPROM chip{};
    unsigned char written[] = {1, 2, 3, 4};
    unsigned char read[4] = {};
    ASSERT_TRUE(usb.CheckEEPROM(&chip) && usb.ConfigureEEPROM(&chip));
    EXPECT_TRUE(usb.WriteEEPROM(100, written, 4));
    board.unplug();
    board.plug();
    board.clearExchanges();
    ASSERT_TRUE(usb.InitPort(0));
    EXPECT_EQ(requestsSeen(3), 0U) << "the machine knows the device number as configured";
    EXPECT_EQ(errorOf(usb, usb.ReadEEPROM(100, read, 4)), sim::statusNotConfigured);
    usb.ClearErrors();
    EXPECT_TRUE(usb.CheckEEPROM(&chip));
    EXPECT_TRUE(usb.ConfigureEEPROM(&chip));
    EXPECT_EQ(chip.maxAddress, E24LC256.maxAddress);
    EXPECT_TRUE(usb.ReadEEPROM(100, read, 4));
    EXPECT_EQ(hex(read, 4), "01 02 03 04") << "a chip keeps its contents";
    EXPECT_EQ(usb.GetLastError(), usbErrorNone);
}

TEST_P(UnplugScenario, TheKeptLampsAreSentAlongWhenTheBoardHasForgottenThem)
{
    EXPECT_TRUE(usb.SetOnPeriodOutputs({{0x80, 0, 0, 0, 0}}));
    board.unplug();
    board.plug();
    ASSERT_TRUE(usb.InitPort(0));
    EXPECT_EQ(board.outputs().onPattern(), sim::Pattern{});
    EXPECT_TRUE(usb.SetOnPeriodOutputBit(usbOutputByte1, 0, 1));
    EXPECT_EQ(board.outputs().onPattern(), (sim::Pattern{0x80, 0x01, 0, 0, 0}));
}

}  // namespace tests::unplug
