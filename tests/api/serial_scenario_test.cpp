// Bytes and 9-bit words through the serial ports: chunks out, everything that waits in, parity, and a lost game.
#include "sim/peripherals/make_peripheral.h"
#include "tests/support/open_board.h"

#include <cerrno>
#include <numeric>

namespace tests::serial
{

using namespace std::chrono_literals;

class SerialScenario : public BoardScenario
{
protected:
    void configure(_usbSerialPort port, _usbPortType type = usbPortType0)
    {
        _DCB settings = {38400, 0, 0};
        EXPECT_TRUE(usb.SetConfig(port, &settings, type));
        board.clearExchanges();
    }

    /// The id of one receive request of port 0.
    int nextId(SorvaneUSB &from, sim::VirtualBoard &on)
    {
        unsigned char data[sim::serialBufferCapacity];
        unsigned long length = 9;
        EXPECT_TRUE(from.Receive(usbSerialPort0, data, &length));
        EXPECT_EQ(length, 0U);
        return on.exchanges().back().sent.at(0);
    }
    int nextId() { return nextId(usb, board); }
};

INSTANTIATE_TEST_SUITE_P(Models, SerialScenario, testing::ValuesIn(everyModel), nameOfModel);

std::vector<std::size_t> chunksOf(const sim::VirtualBoard &board)
{
    std::vector<std::size_t> chunks;
    for (const sim::Exchange &exchange : board.exchanges())
        chunks.push_back(exchange.request == 98 ? exchange.sent.size() : 0);
    return chunks;
}

TEST_P(SerialScenario, DataTravelsInChunksOfTheBusSpeed)
{
    const struct {
        bool highSpeed;
        unsigned int length;
        std::vector<std::size_t> bytes, words;
    } cases[] = {
        {false, 130, {60, 60, 10}, {60, 60, 60, 60, 20}},
        {true, 130, {130}, {252, 8}},
        {false, 60, {60}, {60, 60}},
        {true, 253, {252, 1}, {252, 252, 2}},
    };
    for (const auto &each : cases) {
        OpenBoard fast(GetParam(), 1, each.highSpeed);
        sim::Bytes bytes = counting(each.length);
        EXPECT_TRUE(fast.usb.Send(usbSerialPort1, bytes.data(), each.length));
        EXPECT_EQ(chunksOf(fast.board), each.bytes) << each.length;
        const auto &sent = fast.board.serialPort(1).sent();
        EXPECT_EQ(sim::Bytes(sent.begin(), sent.end()), bytes);

        _DCB settings = {38400, 0, 0};
        EXPECT_TRUE(fast.usb.SetConfig(usbSerialPort0, &settings, usbPortType3));
        fast.board.clearExchanges();
        sim::Words words(each.length);
        std::iota(words.begin(), words.end(), static_cast<std::uint16_t>(0x0F0));
        EXPECT_TRUE(fast.usb.Send9BitData(usbSerialPort0, words.data(), each.length));
        EXPECT_EQ(chunksOf(fast.board), each.words) << each.length;
        const auto &sentWords = fast.board.serialPort(0).sent();
        EXPECT_EQ(sim::Words(sentWords.begin(), sentWords.end()), words);
    }
}

TEST_P(SerialScenario, WhatIsSentIntoALoopComesBack)
{
    for (const _usbSerialPort port : {usbSerialPort0, usbSerialPort1}) {
        board.serialPeripheral(port, sim::makePeripheral("loopback"));
        configure(port);
        sim::Bytes sent = counting(200);
        EXPECT_TRUE(usb.Send(port, sent.data(), 200));
        testClock().advance(1s);
        unsigned char data[sim::serialBufferCapacity];
        unsigned long length = 0;
        EXPECT_TRUE(usb.Receive(port, data, &length));
        EXPECT_EQ(sim::Bytes(data, data + length), sent);

        configure(port, usbPortType3);
        sim::Words words = {0x1A5, 0x0FF, 0x100, 0x001};
        EXPECT_TRUE(usb.Send9BitData(port, words.data(), 4));
        testClock().advance(1s);
        unsigned short back[sim::serialBufferCapacity];
        EXPECT_TRUE(usb.Receive9BitData(port, back, &length));
        EXPECT_EQ(sim::Words(back, back + length), words);
    }
}

TEST_P(SerialScenario, ReceiveCollectsUntilTheBoardIsEmpty)
{
    const sim::Bytes arrived = counting(700);
    for (const _usbSerialPort port : {usbSerialPort0, usbSerialPort1}) {
        board.serialPort(port).deliver(arrived);
        testClock().advance(2s);
        board.clearExchanges();
        unsigned char data[2 * sim::serialBufferCapacity];
        unsigned long length = 9;
        EXPECT_TRUE(usb.Receive(port, data, &length));
        EXPECT_EQ(sim::Bytes(data, data + length), arrived);
        const std::size_t largest = sim::largestAnswer(GetParam());
        EXPECT_EQ(board.exchanges().size(), (length + largest - 1) / largest + 1) << "the last one is empty";
    }
}

TEST_P(SerialScenario, BytesAreHandedOutOnceWhateverTheMessageId)
{
    OpenBoard other(GetParam(), 1);
    for (unsigned char round = 1; round <= 3; ++round) {
        board.serialPort(0).deliver(sim::Bytes{round});
        testClock().advance(1s);
        unsigned char data[usbLargestAnswer] = {};
        unsigned long length = 9;
        EXPECT_TRUE(usb.Receive(usbSerialPort0, data, &length, sim::largestAnswer(GetParam())));
        EXPECT_EQ(hex(data, length), "0" + std::to_string(round));
        EXPECT_EQ(board.exchanges().back().sent, board.exchanges().front().sent) << "the ids meet again";
        for (int k = 0; k < 255; ++k)
            nextId(other.usb, other.board);
    }
}

TEST_P(SerialScenario, APortRunsAtTheBaudRateThatItWasGiven)
{
    for (const unsigned int baud :
         {110U, 300U, 600U, 1200U, 2400U, 4800U, 9600U, 14400U, 19200U, 38400U, 57600U, 62500U}) {
        _DCB settings = {baud, 0, 0};
        for (const _usbSerialPort port : {usbSerialPort0, usbSerialPort1}) {
            if (usb.SetConfig(port, &settings, usbPortType0)) {
                EXPECT_EQ(board.serialPort(port).settings().baudRate, baud) << port;
            }
        }
    }
}

TEST_P(SerialScenario, WordsWithWrongParityAreCountedAndReceived)
{
    board.serialPort(1).spoilParity(300);
    board.serialPort(1).deliver(counting(400));
    testClock().advance(1s);
    unsigned short errors[2] = {9, 9};
    EXPECT_TRUE(usb.GetParityErrors(usbSerialPort0, &errors[0]));
    EXPECT_TRUE(usb.GetParityErrors(usbSerialPort1, &errors[1]));
    EXPECT_EQ(errors[0], 0);
    EXPECT_EQ(errors[1], 300);
    EXPECT_EQ(board.serialPort(1).waiting(), 400U);
    configure(usbSerialPort1);
    EXPECT_TRUE(usb.GetParityErrors(usbSerialPort1, &errors[1]));
    EXPECT_EQ(errors[1], 0);
}

TEST_P(SerialScenario, TheMessageIdCountsEveryPort0ReceiveOfTheProcess)
{
    OpenBoard other(GetParam(), 1);
    unsigned char data[usbLargestAnswer];
    unsigned short words[usbLargestAnswer];
    unsigned long length;
    unsigned char timestamp;
    unsigned int received;
    const struct {
        const char *what;
        int count;
        std::function<void()> act;
    } acts[] = {
        {"another board's receive", 1, [&] { nextId(other.usb, other.board); }},
        {"9-bit words", 1, [&] { usb.Receive9BitData(usbSerialPort0, words, &length); }},
        {"with a capacity", 1, [&] { usb.Receive(usbSerialPort0, data, &length, sizeof data); }},
        {"a call that the driver fails", 1,
         [&] {
             board.faults().add(sim::Fault::ioctlFails(EIO).on(99));
             EXPECT_FALSE(usb.Receive(usbSerialPort0, data, &length));
         }},
        {"a request that the board refuses", 1,
         [&] {
             board.faults().add(sim::Fault::status(0x21).on(99));
             EXPECT_FALSE(usb.Receive(usbSerialPort0, data, &length));
         }},
        {"port 1", 0, [&] { usb.Receive(usbSerialPort1, data, &length); }},
        {"port 2", 0, [&] { usb.Receive(_usbSerialPort(2), data, &length); }},
        {"a null pointer", 0, [&] { usb.Receive(usbSerialPort0, nullptr, &length); }},
        {"timestamps", 0, [&] { usb.ReceiveByteWithTimestamp(usbSerialPort0, data, &timestamp, &received); }},
    };
    for (const auto &each : acts) {
        const int before = nextId();
        each.act();
        EXPECT_EQ(nextId(), (before + each.count + 1) % 256) << each.what;
    }
    int last = nextId();
    for (int k = 0; k < 300; ++k) {
        const int id = nextId();
        ASSERT_EQ(id, last == 255 ? 0 : last + 1);
        last = id;
    }
}

}  // namespace tests::serial
