// A failure in the middle of an operation; a board that is pulled off, and what it takes to go on when it is back.
#include "tests/support/open_board.h"

#include <cerrno>
#include <functional>

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

    /// A board without a past, opened, its EEPROM and the 9-bit words of port 0 configured.
    void plugAnew()
    {
        board.unplug();
        board.plug();
        _DCB settings = {38400, 0, 0};
        ASSERT_TRUE(usb.InitPort(0) && usb.ConfigureEEPROM(&E24LC256));
        ASSERT_TRUE(usb.SetConfig(usbSerialPort0, &settings, usbPortType3));
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

TEST_P(UnplugScenario, AFailureInTheMiddleEndsAnOperationThatKeepsWhatWentBefore)
{
    const std::size_t largest = sim::largestAnswer(GetParam());
    const bool r20 = GetParam() == sim::Model::R20;
    const unsigned char writeSRAM = r20 ? 71 : 117, readSRAM = r20 ? 70 : 116;
    const sim::Bytes arrived = counting(600);
    unsigned char data[1024];
    unsigned short words[1024];
    unsigned long length;
    std::uint64_t sentBefore[2];
    R20EEPROM chip;
    const auto bytesCame = [&] { return data[length] == 0xEE && std::equal(data, data + length, arrived.begin()); };
    const struct {
        const char *name;
        unsigned char request;
        std::function<int()> call;
        std::function<bool()> keeps = [] { return true; };
        bool goesOnWithoutAnAnswer = false;
    } operations[] = {
        {"Send", 98, [&] { return usb.Send(usbSerialPort1, data, 200); },
         [&] { return board.serialPort(1).sentCount() - sentBefore[1] == 60; }},
        {"Send9BitData", 98, [&] { return usb.Send9BitData(usbSerialPort0, words, 100); },
         [&] { return board.serialPort(0).sentCount() - sentBefore[0] == 30; }},
        {"Receive", 99, [&] { return usb.Receive(usbSerialPort1, data, &length); },
         [&] { return length == largest && bytesCame(); }},
        {"Receive into 1000 bytes", 99, [&] { return usb.Receive(usbSerialPort1, data, &length, 1000); },
         [&] { return length == largest && bytesCame(); }},
        {"Receive9BitData", 99, [&] { return usb.Receive9BitData(usbSerialPort1, words, &length, 1000); },
         [&] { return length == largest / 2 && words[0] == (arrived[0] << 8 | arrived[1]); }},
        {"WriteSRAM", writeSRAM, [&] { return usb.WriteSRAM(0, data, 600); }},
        {"ReadSRAM", readSRAM, [&] { return usb.ReadSRAM(0, data, 600); }},
        {"WriteLargeSRAM", writeSRAM, [&] { return usb.WriteLargeSRAM(0, data, 600); }},
        {"ReadLargeSRAM", readSRAM, [&] { return usb.ReadLargeSRAM(0, data, 600); }},
        {"WriteEEPROM", 4, [&] { return usb.WriteEEPROM(8, data, 170); }},
        {"ReadEEPROM", 5, [&] { return usb.ReadEEPROM(8, data, 170); }},
        {"CheckEEPROM", 5, [&] { return usb.CheckEEPROM(&chip); }, [] { return true; }, true},
    };
    const struct {
        const char *what;
        sim::Fault fault;
        int error;
        unsigned int seen;  // of the requests of its kind
        bool isUnplugged = false;
    } failures[] = {
        {"the driver fails", sim::Fault::ioctlFails(EIO), usbErrorTransfer, 1},
        {"the board refuses", sim::Fault::status(70), 70, 2},
        {"the board is pulled off", sim::Fault::unplug(), usbErrorTransfer, 1, true},
    };
    for (const auto &failure : failures) {
        for (const auto &each : operations) {
            if (each.goesOnWithoutAnAnswer && !failure.isUnplugged)
                continue;
            SCOPED_TRACE(std::string(each.name) + ", " + failure.what);
            plugAnew();
            board.serialPort(1).deliver(arrived);
            testClock().advance(std::chrono::seconds(2));
            for (unsigned int port : {0, 1})
                sentBefore[port] = board.serialPort(port).sentCount();
            std::fill(std::begin(data), std::end(data), 0xEE);
            board.faults().add(sim::Fault(failure.fault).on(each.request).skip(1));
            board.clearExchanges();
            EXPECT_EQ(errorOf(usb, each.call()), failure.error);
            EXPECT_EQ(requestsSeen(each.request), failure.seen);
            EXPECT_TRUE(each.keeps());
            EXPECT_EQ(answers(usb), !failure.isUnplugged);
            if (!failure.isUnplugged)
                continue;
            EXPECT_FALSE(usb.InitPort(0)) << "there is no such board now";
            board.plug();
            EXPECT_FALSE(answers(usb)) << "what was open stays open on the board that is gone";
            ASSERT_TRUE(usb.InitPort(0));
            EXPECT_TRUE(answers(usb));
        }
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
