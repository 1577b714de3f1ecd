// Results into buffers of known size: never a byte behind the capacity, and what does not fit stays on the board.
#include "sim/peripherals/make_peripheral.h"
#include "sim/peripherals/polled_device.h"
#include "tests/support/open_board.h"

#include <cerrno>

namespace tests::capacity
{

using namespace std::chrono_literals;

constexpr unsigned char guard = 0xEE;
constexpr unsigned long largestCapacity = ~0UL;
/// A caller's buffer far larger than what it says of itself, so that a byte too much is seen and harms nothing.
struct Guarded {
    sim::Bytes bytes = sim::Bytes(4096, guard);

    unsigned char *data() { return bytes.data(); }
    /// These bytes were stored at the start, and nothing behind them.
    testing::AssertionResult holdsOnly(const sim::Bytes &expected) const
    {
        sim::Bytes all = expected;
        all.resize(bytes.size(), guard);
        if (all == bytes)
            return testing::AssertionSuccess();
        const auto place = std::mismatch(all.begin(), all.end(), bytes.begin()).first - all.begin();
        return testing::AssertionFailure() << "after " << expected.size() << " bytes expected, byte " << place << " is "
                                           << int{bytes[std::size_t(place)]};
    }
};

sim::Bytes first(const sim::Bytes &bytes, std::size_t count)
{
    return {bytes.begin(), bytes.begin() + long(std::min(count, bytes.size()))};
}

class CapacityScenario : public BoardScenario
{
protected:
    void deliver(unsigned int port, const sim::Bytes &bytes)
    {
        board.serialPort(port).deliver(bytes);
        testClock().advance(2s);
    }

    const std::size_t largest = sim::largestAnswer(GetParam());
};

INSTANTIATE_TEST_SUITE_P(Models, CapacityScenario, testing::ValuesIn(everyModel), nameOfModel);

struct OneAnswer {
    const char *name;
    bool onR20;
    std::size_t most;  ///< of an answer that it ever stores
    std::function<int(SorvaneUSB &, unsigned char *, unsigned long)> read;
};

const OneAnswer oneAnswers[] = {
    {"Get8051Version", true, 256, [](auto &u, auto *to, auto n) { return u.Get8051Version(to, n); }},
    {"GetPICVersion", true, 256, [](auto &u, auto *to, auto n) { return u.GetPICVersion(to, n); }},
    {"GetPICSerialNumber", true, 256, [](auto &u, auto *to, auto n) { return u.GetPICSerialNumber(to, n); }},
    {"GetDallasSerialNumber", false, 8,
     [](auto &u, auto *to, auto n) {
         unsigned char crcValid;
         return u.GetDallasSerialNumber(to, &crcValid, n);
     }},
    {"ReadDiagnosticData", false, 256,
     [](auto &u, auto *to, auto n) {
         unsigned char request[] = {1, 2};
         unsigned long size = guard;
         const int result = u.ReadDiagnosticData(request, 2, to, &size, n);
         EXPECT_EQ(size, result ? std::min(n, size) : guard);
         return result;
     }},
    {"SendSPI", true, 256,
     [](auto &u, auto *to, auto n) {
         unsigned char sent[] = {1};
         return u.SendSPI(8, sent, 0, 8, to, n);
     }},
    {"SendSEC", true, 256,
     [](auto &u, auto *to, auto n) {
         unsigned char sent[] = {1};
         return u.SendSEC(1, 2, 1, sent, 0, 1, to, n);
     }},
};

TEST_P(CapacityScenario, OneAnswerIsCutToTheCapacity)
{
    const sim::Bytes shortAnswer = counting(8);
    const sim::Bytes longAnswer = counting(largest);
    for (const OneAnswer &operation : oneAnswers) {
        if (!operation.onR20 && GetParam() == sim::Model::R20)
            continue;
        for (const unsigned long capacity : {0UL, 1UL, 7UL, 8UL, 61UL, 255UL, 256UL, 257UL, largestCapacity}) {
            SCOPED_TRACE(operation.name + (" into " + std::to_string(capacity)));
            Guarded buffer;
            for (const sim::Bytes &answer : {shortAnswer, longAnswer}) {
                board.answerNext(answer);
                EXPECT_TRUE(operation.read(usb, buffer.data(), capacity));
                EXPECT_TRUE(buffer.holdsOnly(first(answer, std::min<unsigned long>(capacity, operation.most))));
            }
        }
        Guarded untouched;
        board.faults().add(sim::Fault::ioctlFails(EIO).carriedOut());
        EXPECT_FALSE(operation.read(usb, untouched.data(), 256));
        EXPECT_TRUE(untouched.holdsOnly({})) << operation.name << " after a failure";
        SorvaneUSB closed;
        EXPECT_FALSE(operation.read(closed, untouched.data(), 256)) << operation.name << " without a board";
        if (GetParam() == sim::Model::R20) {
            board.faults().add(sim::Fault::longAnswer(63));
            EXPECT_EQ(errorOf(usb, operation.read(usb, untouched.data(), 256)), usbErrorLength);
            EXPECT_TRUE(untouched.holdsOnly({})) << operation.name << " after an answer too long";
        }
    }
}

TEST_P(CapacityScenario, ReceiveLeavesOnTheBoardWhatMayNotFit)
{
    const sim::Bytes arrived = counting(1000);
    for (const _usbSerialPort port : {usbSerialPort0, usbSerialPort1}) {
        for (const std::size_t answers : {1U, 2U, 3U}) {
            SCOPED_TRACE(answers);
            const std::size_t fits = answers * largest;
            deliver(port, arrived);
            board.clearExchanges();
            Guarded buffer;
            unsigned long length = guard;
            EXPECT_TRUE(usb.Receive(port, buffer.data(), &length, fits + largest - 1));
            EXPECT_EQ(length, fits);
            EXPECT_TRUE(buffer.holdsOnly(first(arrived, fits)));
            EXPECT_EQ(board.exchanges().size(), answers);
            EXPECT_EQ(board.serialPort(port).waiting(), arrived.size() - fits);
            sim::Bytes all = first(arrived, fits);
            while (length >= fits && all.size() <= arrived.size()) {
                EXPECT_TRUE(usb.Receive(port, buffer.data(), &length, fits));
                all.insert(all.end(), buffer.data(), buffer.data() + length);
            }
            EXPECT_EQ(all, arrived) << "call by call";
        }
    }
}

TEST_P(CapacityScenario, ReceiveAsksOnlyWhileAWholeAnswerFits)
{
    Guarded buffer;
    unsigned long length = guard;
    for (int k = 0; k < 4; ++k)
        board.answerNext(sim::Bytes(10, 1));
    EXPECT_TRUE(usb.Receive(usbSerialPort1, buffer.data(), &length, largest + 15));
    EXPECT_EQ(length, 20U);
    EXPECT_EQ(wire(board), "99/4; 99/4");
    board.faults().clear();
    board.clearExchanges();
    unsigned short words[sim::serialBufferCapacity];
    const sim::Bytes arrived = counting(2 * largest);
    deliver(1, arrived);
    EXPECT_TRUE(usb.Receive9BitData(usbSerialPort1, words, &length, largest - 1));
    EXPECT_EQ(length, largest / 2) << "words: the second answer needs as many again";
    EXPECT_EQ(wire(board), "99/4");
    EXPECT_TRUE(usb.Receive9BitData(usbSerialPort1, words, &length, (largestCapacity >> 1) + 1));
    EXPECT_EQ(length, largest / 2);
    EXPECT_EQ(words[0], arrived[largest] << 8 | arrived[largest + 1]);
    EXPECT_EQ(wire(board), "99/4; 99/4; 99/4") << "a capacity without end: until nothing comes";
}

TEST_P(CapacityScenario, ACapacityBelowOneAnswerIsRefusedInItsTurn)
{
    unsigned char data[1];
    unsigned short words[1];
    unsigned long length;
    unsigned int status;
    const unsigned long bytes = largest;
    const struct {
        const char *name;
        int error;
        unsigned long lengthAfter;
        std::function<int()> call;
    } calls[] = {
        {"Receive", 7, 99, [&] { return usb.Receive(usbSerialPort0, data, &length, bytes - 1); }},
        {"Receive: before the port", 7, 99, [&] { return usb.Receive(port2, data, &length, bytes - 1); }},
        {"Receive: port 2", 8, 0, [&] { return usb.Receive(port2, data, &length, bytes); }},
        {"Receive: null first", 30, 99, [&] { return usb.Receive(port2, nullptr, &length, 0); }},
        {"Receive9BitData", 7, 0, [&] { return usb.Receive9BitData(port2, words, &length, bytes / 2 - 1); }},
        {"Receive9BitData: null first", 30, 99, [&] { return usb.Receive9BitData(port2, nullptr, &length, 0); }},
        {"ReceivePolledMessage", 7, 99,
         [&] { return usb.ReceivePolledMessage(port2, 3, data, &length, &status, bytes - 3); }},
        {"ReceivePolledMessage: slot first", 8, 99,
         [&] { return usb.ReceivePolledMessage(port2, 4, data, &length, &status, 0); }},
        {"ReceivePolledMessage: port 2", 8, 0,
         [&] { return usb.ReceivePolledMessage(port2, 3, data, &length, &status, bytes - 2); }},
        {"ReceivePolledMessage: null first", 30, 99,
         [&] { return usb.ReceivePolledMessage(port2, 4, data, &length, nullptr, 0); }},
    };
    for (const auto &each : calls) {
        length = 99;
        EXPECT_FALSE(each.call()) << each.name;
        EXPECT_EQ(usb.GetLastError(), each.error) << each.name;
        EXPECT_EQ(length, each.lengthAfter) << each.name;
    }
    EXPECT_EQ(wire(board), "");
    usb.close();
    EXPECT_FALSE(usb.Receive(usbSerialPort0, data, &length, bytes));
    EXPECT_FALSE(usb.Receive9BitData(usbSerialPort0, words, &length, bytes));
    EXPECT_FALSE(usb.ReceivePolledMessage(usbSerialPort0, 0, data, &length, &status, bytes));
}

TEST_P(CapacityScenario, APolledMessageGoesOnWithTheNextCall)
{
    RS232PollConfig config = {};
    config.slot = 2;
    config.lengthIndex = 1;
    config.lengthExtra = 3;
    const sim::Bytes question = sim::PolledDevice::frame(sim::Bytes{0x10});
    std::copy(question.begin(), question.end(), config.message1);
    board.serialPeripheral(1, sim::makePeripheral("polled"));
    board.serialPort(1).peripheralAs<sim::PolledDevice>()->say(counting(254));
    EXPECT_TRUE(usb.ConfigureRS232Poll(usbSerialPort1, &config));
    testClock().advance(400ms);

    sim::Bytes whole{0x90};
    sim::append(whole, counting(254));
    whole = sim::PolledDevice::frame(whole);
    const std::size_t part = largest - 2;
    sim::Bytes all;
    for (std::size_t left = whole.size(); left > 0; left -= std::min(part, left)) {
        Guarded buffer;
        unsigned long length = guard;
        unsigned int status = guard;
        board.clearExchanges();
        EXPECT_TRUE(usb.ReceivePolledMessage(usbSerialPort1, 2, buffer.data(), &length, &status, 2 * part - 1));
        EXPECT_EQ(length, std::min(part, left));
        EXPECT_EQ(status, 0U);
        EXPECT_EQ(wire(board), "105/4 02");
        sim::append(all, first(buffer.bytes, length));
        EXPECT_TRUE(buffer.holdsOnly(first(buffer.bytes, length)));
    }
    EXPECT_EQ(all, whole);
}

TEST_P(CapacityScenario, ABoardThatPromisesMoreForEverFillsTheBufferAtMost)
{
    Guarded buffer;
    unsigned long length = guard;
    unsigned int status = guard;
    board.faults().add(sim::Fault::answer({5, 1, 0x43}).forever());
    EXPECT_TRUE(usb.ReceivePolledMessage(usbSerialPort0, 0, buffer.data(), &length, &status, 1000));
    EXPECT_EQ(length, 1000 - (largest - 2) + 1) << "it ends where no whole part fits any more";
    EXPECT_TRUE(buffer.holdsOnly(sim::Bytes(length, 0x43)));
}

TEST(EmptyParts, EndAMessageOnlyWhereTheyComeInARow)
{
    constexpr unsigned int most = 32768;
    OpenBoard open(sim::Model::R35);
    Guarded buffer;
    unsigned long length = guard;
    unsigned int status = guard;
    const std::uint64_t before = open.board.exchangeCount();
    open.board.answerNext({4, 1, 0x41, 0x42});
    open.board.faults().add(sim::Fault::answer({5, 1}).times(most - 1));
    open.board.answerNext({5, 1, 0x43});
    open.board.faults().add(sim::Fault::answer({6, 1}).forever());
    EXPECT_EQ(errorOf(open.usb, open.usb.ReceivePolledMessage(usbSerialPort0, 0, buffer.data(), &length, &status)),
              usbErrorTransfer);
    EXPECT_EQ(open.board.exchangeCount() - before, 1 + (most - 1) + 1 + most) << "a slow device is waited for";
    EXPECT_TRUE(buffer.holdsOnly({0x41, 0x42, 0x43})) << "what came before stays";
    EXPECT_EQ(length, 3U);
    EXPECT_EQ(status, 6U);
}

}  // namespace tests::capacity
