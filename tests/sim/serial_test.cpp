// What the library does not show of the serial ports: line speed, times, and peripherals.
#include "sim/peripherals/cctalk_acceptor.h"
#include "sim/peripherals/make_peripheral.h"
#include "sim/peripherals/polled_device.h"
#include "sim/peripherals/sas_host.h"
#include "tests/sim/sim_test.h"

namespace sim::serial_test
{

using namespace std::chrono_literals;

class SerialTest : public EveryModel
{
public:
    void connect(unsigned int port, const std::string &name) { board.serialPeripheral(port, makePeripheral(name)); }
};
INSTANTIATE_TEST_SUITE_P(Models, SerialTest, testing::ValuesIn(everyModel), nameOfParameter);

TEST_P(SerialTest, ALoopbackSendsEverythingBackAtTheLineSpeed)
{
    ask(97, 4, {0, 0, 0, 0, 0x64, 0xFF});
    connect(1, "loopback");
    ask(98, 4, {1, 2, 3});
    pass(3125us + 2083us);
    EXPECT_EQ(ask(99, 4), Bytes{1}) << "three words out and one back";
    pass(10ms);
    EXPECT_EQ(ask(99, 4), (Bytes{2, 3}));
    EXPECT_EQ(ask(99, 4), Bytes{});
}

TEST_P(SerialTest, BatchesCarryTimestampsAndFitAByteLength)
{
    pass(100ms);
    EXPECT_EQ(ask(102, 3), Bytes{100});
    board.serialPort(0).deliver(Bytes{0x41});
    pass(5ms);
    EXPECT_EQ(ask(102, 3), (Bytes{0x41, 101}));
    board.serialPort(0).deliver(Bytes(200, 0x55));
    pass(1s);
    EXPECT_EQ(ask(102, 3).size(), GetParam() == Model::R20 ? 62U : 254U);

    ask(97, 4, {3, 0, 0, 0, 0x64, 0xFF});
    connect(1, "loopback");
    ask(98, 4, {0x01, 0xA5});
    pass(1s);
    const Bytes batch = ask(102, 4);
    ASSERT_EQ(batch.size(), 3U);
    EXPECT_EQ((Bytes{batch[0], batch[1]}), (Bytes{0x01, 0xA5})) << "a word of 9 bits travels as two bytes";
    EXPECT_EQ(refusal(98, 4, {1, 2, 3}), statusWrongLength);
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
    ask(98, 4, {2, 0, 1, 254, 255});
    pass(1s);
    EXPECT_EQ(ask(99, 4), (Bytes{1, 0, 2, 0, 253}));
    ask(98, 4, {2, 0, 1, 254, 254});
    pass(1s);
    EXPECT_EQ(ask(99, 4), Bytes{}) << "a wrong checksum is not answered";
}

TEST_P(SerialTest, AFullSlotRestsUntilItIsRead)
{
    connect(1, "polled");
    // Slot, options, framing with the length byte, every 10 ms, options; the lengths of no message and of one.
    Bytes slot{1, 0, 0, 1, 1, 3, 1, 0, 0, 0, 0, 0, 4};
    append(slot, PolledDevice::frame(Bytes{2}));
    ask(103, 4, slot);
    pass(60s);
    const std::size_t sent = board.serialPort(1).sentCount();
    pass(60s);
    EXPECT_EQ(board.serialPort(1).sentCount(), sent);
    EXPECT_EQ(board.serialPort(1).polledHost().slot(1).answers.size(), pollSlotCapacity);
    ask(106, 4, {1});
    pass(1s);
    EXPECT_GT(board.serialPort(1).sentCount(), sent);
}

TEST_P(SerialTest, APeripheralThatIsTakenOffHasNothingMoreToDo)
{
    ask(97, 4, {3, 0, 0, 0, 0xB2, 0xFF});
    board.serialPeripheral(1, std::make_unique<SASHost>(5));
    pass(250ms);
    EXPECT_EQ(ask(99, 4), (Bytes{0x01, 0x85}));
    connect(1, "loopback");
    pass(10s);
    EXPECT_EQ(ask(99, 4), Bytes{});
}

}  // namespace sim::serial_test
