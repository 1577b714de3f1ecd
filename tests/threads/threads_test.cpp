// What is promised to the threads of one program: boards of their own, or one board under one lock. The locks of the
// state that all boards share hold between threads as they do between processes.
#include "tests/support/open_board.h"

#include <mutex>
#include <thread>
#include <vector>

namespace tests
{

namespace
{

constexpr int rounds = 60;

template <typename Work>
void inThreads(int count, Work work)
{
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(count));
    for (int number = 0; number < count; ++number)
        threads.emplace_back(work, number);
    for (std::thread &thread : threads)
        thread.join();
}

void writeAndReadBack(SorvaneUSB &usb, unsigned char value)
{
    unsigned char written[20];
    std::fill(std::begin(written), std::end(written), value);
    unsigned char back[sizeof written] = {};
    EXPECT_TRUE(usb.WriteEEPROM(8, written, sizeof written));
    EXPECT_TRUE(usb.ReadEEPROM(8, back, sizeof back));
    EXPECT_EQ(hex(back, sizeof back), hex(written, sizeof written));
}

TEST(Threads, DriveBoardsOfTheirOwnSideBySide)
{
    constexpr int boards = 4;
    sim::VirtualBoard *plugged[boards];
    for (int device = 0; device < boards; ++device)
        plugged[device] = &plug(device, everyModel[device % 3]).firmwareRunning();
    inThreads(boards, [&plugged](int device) {
        sim::Pattern expected{};
        for (int round = 0; round < rounds; ++round) {
            SorvaneUSB usb;
            ASSERT_TRUE(usb.InitPort(device));
            const auto output = static_cast<unsigned int>(round * 7 + device) % 38;
            const unsigned int lit = round % 3 ? 1 : 0;
            EXPECT_TRUE(usb.SetOnPeriodOutputBit(_usbOutputId(output / 8), int(output % 8), lit));
            sim::put(expected, output, lit != 0);
            unsigned char byte = 0;
            unsigned char timestamp = 0;
            unsigned int received = 9;
            EXPECT_TRUE(usb.ReceiveByteWithTimestamp(usbSerialPort0, &byte, &timestamp, &received));
            writeAndReadBack(usb, static_cast<unsigned char>(round + device));
            SorvaneUSB copy = usb;
            usb.close();
            EXPECT_TRUE(copy.SetOutputBrightness(5));
        }
        EXPECT_EQ(plugged[device]->outputs().onPattern(), expected) << "device " << device;
    });
}

TEST(Threads, ThatOpenABoardEachForItselfLoseNoChange)
{
    OpenBoard open(sim::Model::R35);
    ASSERT_TRUE(open.usb.SetOnPeriodOutputs({}));
    constexpr int threads = 4;
    inThreads(threads, [](int thread) {
        SorvaneUSB usb;
        ASSERT_TRUE(usb.InitPort(0));
        for (int round = 0; round < rounds; ++round)
            for (int bit = thread; bit < 32; bit += threads)
                EXPECT_TRUE(usb.SetOutputBit(_usbOutputBitId(bit), round % 2 ? 1 : 0));
    });
    const sim::Pattern lit = {0xFF, 0xFF, 0xFF, 0xFF, 0};
    EXPECT_EQ(open.board.outputs().litNow(), lit);
    // The kept patterns hold the same: this sends them.
    SorvaneUSB usb;
    ASSERT_TRUE(usb.InitPort(0));
    EXPECT_TRUE(usb.SetOnPeriodOutputBit(usbOutputByte0, 0, 1));
    EXPECT_EQ(open.board.outputs().onPattern(), lit);
}

TEST(Threads, ShareABoardUnderOneLock)
{
    OpenBoard open(sim::Model::R35);
    std::mutex oneLock;
    ASSERT_TRUE(open.usb.SetOnPeriodOutputs({}));
    constexpr int threads = 4;
    inThreads(threads, [&](int thread) {
        for (unsigned int output = static_cast<unsigned int>(thread); output < 32; output += threads) {
            const std::lock_guard lock(oneLock);
            EXPECT_TRUE(open.usb.SetOutputBit(_usbOutputBitId(output), 1));
            EXPECT_FALSE(open.usb.SetOutputBit(_usbOutputBitId(output), 2));
            EXPECT_EQ(open.usb.GetLastError(), usbErrorParameter);
        }
    });
    EXPECT_EQ(open.board.outputs().litNow(), (sim::Pattern{0xFF, 0xFF, 0xFF, 0xFF, 0}));
}

}  // namespace

}  // namespace tests
