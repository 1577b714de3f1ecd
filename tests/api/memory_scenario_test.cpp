// What the board moves by itself: SPI transfers with a slave, SEC messages, and recordings into the SRAM.
#include "tests/support/open_board.h"

#include <numeric>

namespace tests::memory_scenario
{

using namespace std::chrono_literals;

class MemoryScenario : public BoardScenario
{
protected:
    /// The bytes that were asked for and the one behind them, which is to stay EE.
    std::string transfer(sim::Bytes sent, unsigned char sendBits, unsigned char receiveBits)
    {
        sim::Bytes back(usbLargestAnswer, 0xEE);
        EXPECT_TRUE(usb.SendSPI(sendBits, sent.data(), 0, receiveBits, back.data()));
        return hex(back.data(), (receiveBits + 7U) / 8 + 1);
    }

    /// Status of the recorder, samples taken, samples to come.
    std::string recording()
    {
        RecordingStatus state{};
        unsigned short taken = 9;
        unsigned short left = 9;
        EXPECT_TRUE(usb.GetRecordingStatus(&state, &taken, &left));
        return std::to_string(state) + " " + std::to_string(taken) + " " + std::to_string(left);
    }
};

INSTANTIATE_TEST_SUITE_P(Models, MemoryScenario, testing::ValuesIn(everyModel), nameOfModel);

TEST_P(MemoryScenario, AnSPISlaveEchoesWhileThePortIsOn)
{
    EXPECT_EQ(transfer({0x12}, 8, 16), "FF FF EE") << "nothing drives the line";
    EXPECT_TRUE(usb.EnableSPI());
    EXPECT_EQ(transfer({0x12, 0x30}, 12, 16), "12 30 EE");
    EXPECT_EQ(transfer({0x12, 0x30}, 12, 0), "EE");
    EXPECT_EQ(transfer(counting(20), 160, 160), hex(counting(20).data(), 20) + " EE");
    EXPECT_EQ(transfer({16, 32, 2, 1, 2, 54}, 48, 56), "10 20 02 01 02 36 00 EE") << "no SEC frame: a wrong checksum";
    board.spi().reply({9});
    EXPECT_EQ(transfer({0x12}, 8, 16), "09 00 EE");
    EXPECT_TRUE(usb.DisableSPI());
    EXPECT_EQ(transfer({0x12}, 8, 8), "FF EE");
}

TEST_P(MemoryScenario, ASECMessageIsAnsweredByAFrameWithARightChecksum)
{
    EXPECT_TRUE(usb.EnableSPI());
    for (unsigned char length = 0; length <= 16; ++length) {
        sim::Bytes data(16, static_cast<unsigned char>(0xF0 + length));
        unsigned char reply[usbLargestAnswer] = {};
        EXPECT_TRUE(usb.SendSEC(0xA5, 0x20, length, data.data(), 0, 16, reply));
        EXPECT_EQ(hex(reply, 3), "A5 20 10") << "the slave has found the frame correct";
        EXPECT_EQ(reply[18], length > 0 ? data[0] : 15);
        EXPECT_EQ(reply[19], std::accumulate(reply, reply + 19, 0) & 0xFF);
    }
}

TEST_P(MemoryScenario, ARecordingLiesWhereItWasAskedForAndNowhereElse)
{
    if (GetParam() == sim::Model::R20)
        return;  // it has no recorder
    _usbInputBitId inputs[4] = {usbInput2, usbInputUnused, usbInput23, usbInputUnused};
    EXPECT_EQ(errorOf(usb, usb.StartRecordingInputs(100)), sim::statusNotConfigured);
    for (const unsigned long address : {1UL, 0x3FFEUL, 0x12345UL, 0x2FFFBUL}) {
        SCOPED_TRACE(address);
        unsigned char around[6] = {0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA};
        EXPECT_TRUE(usb.WriteLargeSRAM(address - 1, around, 6));
        EXPECT_TRUE(usb.ConfigureRecordingInputs(inputs, address, 4));
        EXPECT_EQ(recording(), "1 0 4");
        board.inputs().set(23, true);
        board.inputs().set(2, false);
        EXPECT_TRUE(usb.StartRecordingInputs(100));
        testClock().advance(15ms);
        EXPECT_EQ(recording(), "2 2 2");
        board.inputs().set(2, true);
        testClock().advance(10ms);
        board.inputs().set(23, false);
        testClock().advance(1s);
        EXPECT_EQ(recording(), "3 4 0");
        EXPECT_TRUE(usb.ReadLargeSRAM(address - 1, around, 6));
        EXPECT_EQ(hex(around, 6), "AA 04 04 05 01 AA");
    }
}

TEST_P(MemoryScenario, ARecordingFrom0x30000OnOverwritesTheFirmware)
{
    if (GetParam() == sim::Model::R20)
        return;  // it has no recorder
    _usbInputBitId inputs[4] = {usbInput2, usbInputUnused, usbInputUnused, usbInputUnused};
    board.inputs().set(2, true);
    unsigned char data[] = {0xAA, 0xAA, 0xAA, 0xAA};
    EXPECT_TRUE(usb.WriteLargeSRAM(0x2FFFE, data, 4));
    EXPECT_TRUE(usb.ConfigureRecordingInputs(inputs, 0x2FFFF, 3));
    EXPECT_TRUE(usb.StartRecordingInputs(10));
    testClock().advance(1s);
    EXPECT_TRUE(usb.ReadLargeSRAM(0x2FFFE, data, 4));
    EXPECT_EQ(hex(data, 4), "AA 01 AA AA") << "a transfer steps over the firmware's pages, the recorder does not";
    EXPECT_EQ(hex(board.firmware().image().data(), 3), "01 01 00");
    // As far as an offset goes, the memory is there.
    EXPECT_TRUE(usb.ConfigureRecordingInputs(inputs, 0x73FFD, 1));
}

}  // namespace tests::memory_scenario
