// The serial ports with a peripheral at the other end.
#include "sim/peripherals/cctalk_acceptor.h"
#include "sim/peripherals/polled_device.h"
#include "sim/peripherals/sas_host.h"
#include "tests/sim/sim_test.h"

#include <numeric>

namespace sim
{
namespace
{

using namespace std::chrono_literals;

class SerialTest : public EveryModel
{
public:
    // Request 97 with type, format, options and 9600 baud for the pipe's port.
    void configure(int pipe, unsigned char type = 0)
    {
        ask(97, pipe, pipe == 3 ? Bytes{type, 0, 0, 0, 0xD9, 1} : Bytes{type, 0, 0, 0, 0x64, 0xFF});
    }

    void connect(unsigned int port, const std::string &name) { board.serialPeripheral(port, makePeripheral(name)); }

    std::size_t largest() const { return GetParam() == Model::R20 ? 62 : 256; }
};
INSTANTIATE_TEST_SUITE_P(Models, SerialTest, testing::ValuesIn(everyModel), nameOfParameter);

TEST_P(SerialTest, TheDivisorsGiveTheBaudRates)
{
    const struct {
        int pipe;
        unsigned char a, b;
        unsigned int baudRate;
    } cases[] = {{3, 0x98, 0x00, 1200},  {3, 0x64, 0x01, 2400},  {3, 0xB2, 0x01, 4800},  {3, 0xD9, 0x01, 9600},
                 {3, 0xEC, 0x01, 19200}, {3, 0xF6, 0x01, 38400}, {3, 0xFA, 0x01, 62500}, {4, 0xBB, 0xCA, 110},
                 {4, 0x78, 0xEC, 300},   {4, 0x3C, 0xF6, 600},   {4, 0x1F, 0xFB, 1200},  {4, 0x8F, 0xFD, 2400},
                 {4, 0xC8, 0xFE, 4800},  {4, 0x64, 0xFF, 9600},  {4, 0x98, 0xFF, 14400}, {4, 0xB2, 0xFF, 19200},
                 {4, 0xD8, 0xFF, 38400}, {4, 0xE6, 0xFF, 57600}, {4, 0xE8, 0xFF, 62500}};
    for (const auto &each : cases) {
        ask(97, each.pipe, {1, 2, 3, 1, each.a, each.b});
        EXPECT_EQ(board.serialPort(each.pipe == 3 ? 0 : 1).settings().baudRate, each.baudRate);
    }
    EXPECT_EQ(refusal(97, 3, {0, 0, 0, 0, 0x64, 0xFF}), statusWrongValue);
    EXPECT_EQ(refusal(97, 4, {0, 0, 0, 0, 0xD9, 0x01}), statusWrongValue);
    EXPECT_EQ(refusal(97, 3, {1, 3, 0, 0, 0xD9, 1}), statusWrongValue) << "format 3 needs type 0";
    EXPECT_EQ(refusal(97, 3, {4, 0, 0, 0, 0xD9, 1}), statusWrongValue);
}

TEST_P(SerialTest, ALoopbackSendsEverythingBackAtTheLineSpeed)
{
    configure(4);
    connect(1, "loopback");
    ask(98, 4, {1, 2, 3});
    pass(3125us + 2083us);
    EXPECT_EQ(ask(99, 4), Bytes{1}) << "three words out and one back";
    pass(10ms);
    EXPECT_EQ(ask(99, 4), (Bytes{2, 3}));
    EXPECT_EQ(ask(99, 4), Bytes{});
}

TEST_P(SerialTest, ALongReceptionComesInParts)
{
    Bytes data(300);
    std::iota(data.begin(), data.end(), static_cast<unsigned char>(0));
    board.serialPort(1).deliver(data);
    pass(1s);
    Bytes all;
    for (Bytes part = ask(99, 4); !part.empty(); part = ask(99, 4)) {
        EXPECT_EQ(part.size(), std::min(largest(), data.size() - all.size()));
        append(all, part);
    }
    EXPECT_EQ(all, data);
}

TEST_P(SerialTest, ARepeatedMessageIdGetsTheSameAnswer)
{
    board.serialPort(0).deliver(Bytes{7, 8});
    pass(1s);
    EXPECT_EQ(ask(99, 3, {5}), (Bytes{7, 8}));
    EXPECT_EQ(ask(99, 3, {5}), (Bytes{7, 8}));
    EXPECT_EQ(ask(99, 3, {6}), Bytes{});
    board.serialPort(0).deliver(Bytes{9});
    pass(1s);
    EXPECT_EQ(ask(99, 3, {6}), Bytes{9}) << "after an empty answer nothing is repeated";
}

TEST_P(SerialTest, BatchesCarryTimestampsAndFitAByteLength)
{
    const auto stamp = [this] { return static_cast<unsigned char>(time.now() / 1ms & 0xFF); };
    pass(100ms);
    EXPECT_EQ(ask(102, 3), Bytes{stamp()});
    board.serialPort(0).deliver(Bytes{0x41});
    pass(5ms);
    EXPECT_EQ(ask(102, 3), (Bytes{0x41, 101}));
    board.serialPort(0).deliver(Bytes(200, 0x55));
    pass(1s);
    EXPECT_EQ(ask(102, 3).size(), GetParam() == Model::R20 ? 62U : 254U);
}

TEST_P(SerialTest, NineBitWordsTravelAsTwoBytes)
{
    configure(4, 3);
    connect(1, "loopback");
    ask(98, 4, {0x01, 0xA5, 0x00, 0x5A});
    pass(1s);
    EXPECT_EQ(board.serialPort(1).sent().front(), 0x1A5);
    EXPECT_EQ(ask(99, 4), (Bytes{0x01, 0xA5, 0x00, 0x5A}));
    ask(98, 4, {0x01, 0xA5});
    pass(1s);
    const Bytes batch = ask(102, 4);
    ASSERT_EQ(batch.size(), 3U);
    EXPECT_EQ((Bytes{batch[0], batch[1]}), (Bytes{0x01, 0xA5}));
    EXPECT_EQ(refusal(98, 4, {1, 2, 3}), statusWrongLength);
}

TEST_P(SerialTest, ParityErrorsAreCounted)
{
    board.serialPort(0).spoilParity(300);
    board.serialPort(0).deliver(Bytes(400));
    pass(1s);
    EXPECT_EQ(ask(100, 3), (Bytes{1, 44}));
    EXPECT_EQ(ask(100, 4), (Bytes{0, 0}));
    configure(3);
    EXPECT_EQ(ask(100, 3), (Bytes{0, 0}));
}

TEST_P(SerialTest, TheTimeoutMessageGoesOutOnceAfterASilence)
{
    ask(101, 3, {50, 2, 0xAB, 0xCD});
    pass(1400ms);
    ask(98, 3, {1});
    pass(1400ms);
    EXPECT_EQ(board.serialPort(0).sentCount(), 1U);
    pass(200ms);
    EXPECT_EQ(board.serialPort(0).sent().back(), 0xCD);
    pass(10s);
    EXPECT_EQ(board.serialPort(0).sentCount(), 3U);
    EXPECT_EQ(refusal(101, 3, {50, 2, 0xAB}), statusWrongLength);
}

// Slot, options, framing, lengths and time; then the messages.
Bytes slotConfig(unsigned char slot, const Bytes &message1, const Bytes &message2, unsigned char lengthExtra = 5,
                 unsigned char tensOfMs = 20)
{
    Bytes payload{
        slot, 0, 0, 1, 1, lengthExtra, tensOfMs, 0, 0, 0, 0, lowByte(message1.size()), lowByte(message2.size())};
    append(payload, message1);
    append(payload, message2);
    return payload;
}

TEST_P(SerialTest, ThePollSlotsCollectTheAcceptorsAnswers)
{
    connect(0, "cctalk");
    const Bytes simplePoll{2, 0, 1, 254, 255};
    const Bytes readCredit{2, 0, 1, 229, 24};
    ask(103, 3, slotConfig(2, simplePoll, readCredit));
    EXPECT_EQ(ask(105, 3, {2}), (Bytes{polledNothing, 0}));
    EXPECT_TRUE(board.insertCoin(4));
    pass(420ms);
    EXPECT_EQ(ask(105, 3, {2}), (Bytes{0, 0, 1, 0, 2, 0, 253}));
    EXPECT_EQ(ask(105, 3, {2}), (Bytes{0, 0, 1, 11, 2, 0, 1, 4, 1, 0, 0, 0, 0, 0, 0, 0, 0, 236}));
    EXPECT_EQ(ask(105, 3, {2}), (Bytes{polledNothing, 0}));
    EXPECT_EQ(ask(99, 3, {0}), Bytes{}) << "answers of a slot are no received bytes";
    pass(1s);
    EXPECT_GT(board.serialPort(0).polledHost().slot(2).answers.size(), 2U);
    ask(104, 3, {2});
    EXPECT_EQ(ask(105, 3, {2})[0], polledNothing);
    EXPECT_EQ(refusal(105, 3, {4}), statusWrongValue);
}

TEST_P(SerialTest, AnAcceptorObeysItsInhibits)
{
    connect(1, "cctalk");
    auto &acceptor = *board.serialPort(1).peripheralAs<CcTalkAcceptor>();
    ask(98, 4, {2, 2, 1, 231, 0x01, 0x00, 19});
    pass(100ms);
    EXPECT_EQ(ask(99, 4), (Bytes{1, 0, 2, 0, 253}));
    EXPECT_TRUE(acceptor.insert(1));
    EXPECT_FALSE(acceptor.insert(2));
    ask(98, 4, {2, 0, 1, 254, 254});
    pass(1s);
    EXPECT_EQ(ask(99, 4), Bytes{}) << "a wrong checksum is not answered";
}

TEST_P(SerialTest, APolledDeviceAnswersInPartsAndItsSilenceIsNoticed)
{
    connect(1, "polled");
    auto &device = *board.serialPort(1).peripheralAs<PolledDevice>();
    ask(121, 4, {0, 3});
    device.say(Bytes(200, 0x33));
    ask(103, 4, slotConfig(0, PolledDevice::frame(Bytes{0x10}), {}, 3, 100));
    pass(300ms);
    Bytes message;
    for (bool more = true; more;) {
        const Bytes part = ask(105, 4, {0});
        ASSERT_GE(part.size(), 2U);
        ASSERT_LE(part.size(), largest());
        EXPECT_EQ(part[0], polledMessage);
        more = part[1] != 0;
        append(message, Payload(part).subspan(2));
    }
    Bytes expected(201, 0x33);
    expected[0] = 0x90;
    EXPECT_EQ(message, PolledDevice::frame(expected));
    EXPECT_EQ(device.heard(), Bytes{0x10});
    device.setSilent(true);
    pass(2s);
    EXPECT_EQ(ask(105, 4, {0}), (Bytes{polledNoAnswer, 0}));
}

TEST_P(SerialTest, AFullSlotRestsUntilItIsRead)
{
    connect(1, "polled");
    ask(103, 4, slotConfig(1, PolledDevice::frame(Bytes{1}), PolledDevice::frame(Bytes{2}), 3, 1));
    pass(60s);
    const std::size_t sent = board.serialPort(1).sentCount();
    pass(60s);
    EXPECT_EQ(board.serialPort(1).sentCount(), sent);
    EXPECT_EQ(board.serialPort(1).polledHost().slot(1).answers.size(), pollSlotCapacity);
    ask(106, 4, {1});
    pass(1s);
    EXPECT_GT(board.serialPort(1).sentCount(), sent);
}

TEST(SASTest, AHostPollsTheMachine)
{
    ManualClock time;
    VirtualBoard board(Model::R35, time);
    board.firmwareRunning().serialPeripheral(1, std::make_unique<SASHost>(5));
    const auto ask = [&board](unsigned char request, const Bytes &payload = {}) {
        return board.exchange(request, 4, payload.data(), payload.size()).bytes;
    };
    ask(97, {3, 0, 0, 0, 0xB2, 0xFF});
    ask(122, {5});
    EXPECT_EQ(ask(124), Bytes{0});
    time.advance(250ms);
    EXPECT_EQ(ask(124), Bytes{5}) << "a poll waits, the host is there";
    EXPECT_EQ(ask(99), (Bytes{0x01, 0x85}));
    ask(98, {0x00, 0x1F});
    EXPECT_EQ(ask(124), Bytes{4});
    ask(123, {1, 0});
    time.advance(400ms);
    const auto &host = *board.serialPort(1).peripheralAs<SASHost>();
    EXPECT_EQ(host.answers(), (Words{0x1F, 0, 0}));
    EXPECT_EQ(ask(124), Bytes{6});
    EXPECT_EQ(ask(99), Bytes{}) << "what the board answers does not reach the game";
}

}  // namespace
}  // namespace sim
