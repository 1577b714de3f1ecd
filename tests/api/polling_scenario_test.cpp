// Peripherals that the board polls by itself, and a SAS host that polls the board.
#include "sim/peripherals/cctalk_acceptor.h"
#include "sim/peripherals/make_peripheral.h"
#include "sim/peripherals/polled_device.h"
#include "sim/peripherals/sas_host.h"
#include "tests/support/open_board.h"

#include <cstring>

namespace tests::polling
{

using namespace std::chrono_literals;

class PollingScenario : public BoardScenario
{
protected:
    void configure(_usbSerialPort port, unsigned int baud, _usbPortType type)
    {
        _DCB settings = {baud, 0, 0};
        EXPECT_TRUE(usb.SetConfig(port, &settings, type));
    }

    /// Status and bytes of the oldest message: "0: 01 00 02 00 FD".
    std::string message(_usbSerialPort port, unsigned char slot)
    {
        unsigned char bytes[sim::serialBufferCapacity];
        unsigned long length = 99;
        unsigned int status = 99;
        EXPECT_TRUE(usb.ReceivePolledMessage(port, slot, bytes, &length, &status, sizeof bytes));
        return std::to_string(status) + ": " + hex(bytes, length);
    }
};

INSTANTIATE_TEST_SUITE_P(Models, PollingScenario, testing::ValuesIn(everyModel), nameOfModel);

class AcceptorScenario : public PollingScenario
{
protected:
    AcceptorScenario()
    {
        board.serialPeripheral(0, sim::makePeripheral("cctalk"));
        configure(usbSerialPort0, 9600, usbPortType0);
    }

    void readCreditInSlot1()
    {
        CCTalkConfig config = {};
        config.slot = 1;
        config.timeMs = 200;
        const unsigned char frame[] = {2, 0, 1, 229, 24};
        std::memcpy(config.message1, frame, sizeof frame);
        std::memcpy(config.message2, frame, sizeof frame);
        EXPECT_TRUE(usb.ConfigureCCTalkPort(usbSerialPort0, &config));
    }

    sim::CcTalkAcceptor &acceptor() { return *board.serialPort(0).peripheralAs<sim::CcTalkAcceptor>(); }
};

INSTANTIATE_TEST_SUITE_P(Models, AcceptorScenario, testing::ValuesIn(everyModel), nameOfModel);

const char *const noCredit = "0: 01 0B 02 00 00 00 00 00 00 00 00 00 00 00 00 F2";
const char *const coin4 = "0: 01 0B 02 00 01 04 01 00 00 00 00 00 00 00 00 EC";
const char *const coin4Then7 = "0: 01 0B 02 00 02 07 01 04 01 00 00 00 00 00 00 E3";
const char *const coin4Then7Then5 = "0: 01 0B 02 00 03 05 01 07 01 04 01 00 00 00 00 DC";

TEST_P(AcceptorScenario, CoinsArriveAsTheBoardPolls)
{
    readCreditInSlot1();
    EXPECT_EQ(message(usbSerialPort0, 1), "1: ") << "it has not polled yet";
    testClock().advance(100ms);
    EXPECT_TRUE(board.insertCoin(4));
    testClock().advance(200ms);
    EXPECT_TRUE(board.insertCoin(7));
    testClock().advance(200ms);
    EXPECT_EQ(message(usbSerialPort0, 1), noCredit);
    EXPECT_EQ(message(usbSerialPort0, 1), coin4);
    EXPECT_EQ(message(usbSerialPort0, 1), coin4Then7);
    EXPECT_EQ(message(usbSerialPort0, 1), "1: ");
    unsigned char data[sim::serialBufferCapacity];
    unsigned long length = 99;
    EXPECT_TRUE(usb.Receive(usbSerialPort0, data, &length));
    EXPECT_EQ(length, 0U) << "answers of a slot are no received bytes";
    testClock().advance(200ms);
    EXPECT_TRUE(board.insertCoin(5));
    testClock().advance(400ms);
    EXPECT_TRUE(usb.DeletePolledMessage(usbSerialPort0, 1));
    EXPECT_EQ(message(usbSerialPort0, 1), coin4Then7Then5) << "the oldest is gone";
    EXPECT_TRUE(usb.EmptyPolledBuffer(usbSerialPort0, 1));
    EXPECT_EQ(message(usbSerialPort0, 1), "1: ");
    testClock().advance(300ms);
    EXPECT_EQ(message(usbSerialPort0, 1), coin4Then7Then5) << "the polling goes on";
}

TEST_P(AcceptorScenario, ASilentAcceptorIsNoticedAfterTheHostTimeout)
{
    acceptor().setSilent(true);
    EXPECT_TRUE(usb.SetPolledHostTimeout(usbSerialPort0, 1, 2.05));
    readCreditInSlot1();
    testClock().advance(1900ms);
    EXPECT_EQ(message(usbSerialPort0, 1), "1: ");
    testClock().advance(200ms);
    EXPECT_EQ(message(usbSerialPort0, 1), "2: ");
    acceptor().setSilent(false);
    testClock().advance(300ms);
    EXPECT_EQ(message(usbSerialPort0, 1), noCredit);
}

TEST_P(PollingScenario, ADeviceWithALengthByteIsPolledInTurns)
{
    board.serialPeripheral(1, sim::makePeripheral("polled"));
    const auto device = [this]() -> auto &
    {
        return *board.serialPort(1).peripheralAs<sim::PolledDevice>();
    };
    configure(usbSerialPort1, 19200, usbPortType0);
    RS232PollConfig config = {};
    config.slot = 2;
    config.timeMs = 100;
    config.lengthIndex = 1;
    config.lengthExtra = 3;
    const unsigned char first[] = {2, 1, 0x10, 0x13};
    const unsigned char second[] = {2, 2, 0x20, 0x21, 0x01};
    std::memcpy(config.message1, first, sizeof first);
    std::memcpy(config.message2, second, sizeof second);
    device().say({0x55, 0x66});
    EXPECT_TRUE(usb.ConfigureRS232Poll(usbSerialPort1, &config));
    testClock().advance(50ms);
    EXPECT_EQ(device().heard(), sim::Bytes{0x10});
    testClock().advance(100ms);
    EXPECT_EQ(device().heard(), (sim::Bytes{0x20, 0x21}));
    EXPECT_EQ(message(usbSerialPort1, 2), "0: 02 03 90 55 66 A2");
    EXPECT_EQ(message(usbSerialPort1, 2), "0: 02 01 A0 A3");
    EXPECT_TRUE(usb.SetPolledHostTimeout(usbSerialPort1, 2, 0.3));
    device().setSilent(true);
    testClock().advance(2s);
    EXPECT_EQ(message(usbSerialPort1, 2), "2: ");

    config.lengthExtra = 0;
    config.message1[1] = config.message2[1] = 0;
    EXPECT_TRUE(usb.ConfigureRS232Poll(usbSerialPort1, &config));
    const std::size_t sent = board.serialPort(1).sentCount();
    testClock().advance(10s);
    EXPECT_EQ(board.serialPort(1).sentCount(), sent) << "a slot without messages polls nothing";
}

class SASScenario : public PollingScenario
{
protected:
    SASScenario()
    {
        board.serialPeripheral(1, std::make_unique<sim::SASHost>(5));
        configure(usbSerialPort1, 19200, usbPortType3);
    }

    unsigned int status()
    {
        unsigned int value = 99;
        EXPECT_TRUE(usb.GetSASMessageStatus(usbSerialPort1, &value));
        return value;
    }

    sim::Words received()
    {
        unsigned short words[sim::serialBufferCapacity];
        unsigned long count = 0;
        EXPECT_TRUE(usb.Receive9BitData(usbSerialPort1, words, &count, sim::serialBufferCapacity));
        return {words, words + count};
    }

    const sim::Words &heardByHost() { return board.serialPort(1).peripheralAs<sim::SASHost>()->answers(); }
};

INSTANTIATE_TEST_SUITE_P(Models, SASScenario, testing::Values(sim::Model::R20s, sim::Model::R35), nameOfModel);

TEST_P(SASScenario, TheGameAnswersTheHostsPolls)
{
    EXPECT_TRUE(usb.SetSASMachineAddress(usbSerialPort1, 5));
    EXPECT_EQ(status(), 0U);
    testClock().advance(250ms);
    EXPECT_EQ(status(), 5U) << "a poll waits, the host is there";
    EXPECT_EQ(received(), sim::Words{0x185});
    unsigned short answer[] = {0x1F};
    EXPECT_TRUE(usb.Send9BitData(usbSerialPort1, answer, 1));
    EXPECT_EQ(status(), 4U);
    testClock().advance(50ms);
    EXPECT_EQ(heardByHost(), sim::Words{0x1F});
}

TEST_P(SASScenario, TheBoardAnswersByItselfWhileTheGameIsBusy)
{
    EXPECT_TRUE(usb.SetSASMachineAddress(usbSerialPort1, 5));
    EXPECT_TRUE(usb.SetSASBusy(usbSerialPort1, 1));
    testClock().advance(300ms);
    EXPECT_TRUE(usb.SetSASAutoReply(usbSerialPort1, 1, 0x5A));
    testClock().advance(200ms);
    EXPECT_EQ(heardByHost(), (sim::Words{0x00, 0x5A}));
    EXPECT_EQ(status(), 6U);
    EXPECT_EQ(received(), sim::Words{}) << "what the board answers does not reach the game";
    EXPECT_TRUE(usb.SetSASBusy(usbSerialPort1, 0));
    testClock().advance(200ms);
    EXPECT_EQ(status(), 5U);
}

}  // namespace tests::polling
