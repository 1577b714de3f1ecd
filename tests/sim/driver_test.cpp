// Both ioctl protocols, byte by byte, in the layouts of 32- and 64-bit callers.
#include "sim/driver/driver.h"

#include "tests/sim/sim_test.h"

#include <cerrno>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace sim::driver_test
{

// A caller with a page at 0x1000 and a read-only one at 0x2000.
class CallerPages : public CallerMemory
{
public:
    static constexpr std::uint64_t page = 0x1000;
    static constexpr std::uint64_t readOnlyPage = 0x2000;
    static constexpr std::uint64_t end = 0x3000;

    bool read(std::uint64_t address, void *to, std::size_t size) override
    {
        if (address < page || address > end || size > end - address)
            return false;
        std::memcpy(to, &bytes[address - page], size);
        return true;
    }

    bool write(std::uint64_t address, const void *from, std::size_t size) override
    {
        if (address < page || address > readOnlyPage || size > readOnlyPage - address)
            return false;
        std::memcpy(&bytes[address - page], from, size);
        return true;
    }

    void put(std::uint64_t address, const Bytes &data) { std::copy(data.begin(), data.end(), &bytes[address - page]); }
    Bytes get(std::uint64_t address, std::size_t size) const
    {
        const auto start = bytes.begin() + static_cast<std::ptrdiff_t>(address - page);
        return {start, start + static_cast<std::ptrdiff_t>(size)};
    }

    Bytes bytes = Bytes(0x2001, 0xA5);
};

struct RecordFields {
    std::uint64_t statusWord = 0x1100;
    std::uint32_t pipeIndex = 0;
    std::uint64_t outData = 0x1200;
    std::uint64_t outLength = 0;
    std::uint64_t inData = 0x1300;
    std::uint64_t inLength = 0x1400;
    unsigned char request = 75;
};

void putNumber(Bytes &to, std::size_t at, std::uint64_t number, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        to[at + i] = static_cast<unsigned char>(number >> 8 * i);
}

Bytes recordBytes(const RecordFields &fields, CallerWidth width)
{
    const std::size_t word = width == CallerWidth::Bits32 ? 4 : 8;
    Bytes record(7 * word, 0xCC);
    putNumber(record, 0, fields.statusWord, word);
    putNumber(record, word, fields.pipeIndex, 4);
    putNumber(record, 2 * word, fields.outData, word);
    putNumber(record, 3 * word, fields.outLength, word);
    putNumber(record, 4 * word, fields.inData, word);
    putNumber(record, 5 * word, fields.inLength, word);
    record[6 * word] = fields.request;
    return record;
}

class RecordTest : public BoardTest, public testing::WithParamInterface<CallerWidth>
{
public:
    RecordTest() : BoardTest(Model::R20s) {}

    int call(const RecordFields &fields, std::uint64_t at = 0x1000)
    {
        caller.put(at, recordBytes(fields, GetParam()));
        return driverIoctl(board, 0x8400, at, GetParam(), caller);
    }

    CallerPages caller;
};

INSTANTIATE_TEST_SUITE_P(Widths, RecordTest, testing::Values(CallerWidth::Bits32, CallerWidth::Bits64),
                         [](const auto &info) { return info.param == CallerWidth::Bits32 ? "bits32" : "bits64"; });

TEST_P(RecordTest, PayloadAnswerLengthAndStatusArrive)
{
    board.inputs().set(1, true);
    board.inputs().set(32, true);
    EXPECT_EQ(call({}), 0);
    EXPECT_EQ(caller.get(0x1300, 6), (Bytes{2, 0, 0, 0, 1, 0xA5}));
    EXPECT_EQ(caller.get(0x1100, 5), (Bytes{0, 0, 0, 0, 0xA5}));
    const Bytes count = GetParam() == CallerWidth::Bits32 ? Bytes{5, 0, 0, 0, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5}
                                                          : Bytes{5, 0, 0, 0, 0, 0, 0, 0, 0xA5};
    EXPECT_EQ(caller.get(0x1400, 9), count);

    RecordFields fields;
    fields.request = 77;
    fields.outLength = 10;
    caller.put(0x1200, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(call(fields), 0);
    EXPECT_EQ(board.exchanges().back(), (Exchange{77, 1, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 0, {}}));
}

TEST_P(RecordTest, ARefusalIsASuccessfulCallWithAStatusWord)
{
    board.faults().add(Fault::status(0xFFFFFF80));
    EXPECT_EQ(call({}), 0);
    EXPECT_EQ(caller.get(0x1100, 4), (Bytes{0x80, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(caller.get(0x1400, 4), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(caller.get(0x1300, 1), Bytes{0xA5});
}

TEST_P(RecordTest, AWrongPointerChangesNothing)
{
    const struct {
        const char *what;
        std::uint64_t RecordFields::*field;
        std::uint64_t address;
    } cases[] = {
        {"null status word", &RecordFields::statusWord, 0},
        {"read-only status word", &RecordFields::statusWord, 0x2000},
        {"status word across the end", &RecordFields::statusWord, 0x1FFE},
        {"null count", &RecordFields::inLength, 0},
        {"read-only count", &RecordFields::inLength, 0x2100},
        {"null payload", &RecordFields::outData, 0},
        {"payload across the end", &RecordFields::outData, 0x2FFF},
        {"answer nowhere", &RecordFields::inData, 0x8000},
        {"read-only answer", &RecordFields::inData, 0x2000},
        {"answer whose last byte is read-only", &RecordFields::inData, 0x1FFF},
    };
    ASSERT_EQ(refusal(102, 3), 0);  // nothing received yet: a lone timestamp
    for (const auto &each : cases) {
        SCOPED_TRACE(each.what);
        board.switches().open(1);
        RecordFields fields;
        fields.pipeIndex = 4;
        fields.request = 67;  // two bytes, and they are reset by being read
        if (each.field == &RecordFields::outData) {
            fields.request = 65;
            fields.outLength = 8;
        }
        fields.*each.field = each.address;
        caller.put(0x1000, recordBytes(fields, GetParam()));
        const Bytes before = caller.bytes;
        board.clearExchanges();
        EXPECT_EQ(call(fields), -EFAULT);
        EXPECT_EQ(caller.bytes, before);
        EXPECT_TRUE(board.exchanges().empty());
        EXPECT_EQ(ask(67, 5), (Bytes{2, 0})) << "the flags were reset";
        board.switches().close(1);
        ask(67, 5);
    }
    EXPECT_EQ(driverIoctl(board, 0x8400, 0x2FF0, GetParam(), caller), -EFAULT);
    EXPECT_EQ(driverIoctl(board, 0x8400, 0, GetParam(), caller), -EFAULT);
}

TEST_P(RecordTest, AnEmptyAnswerMayLieBehindAFullBufferButNotAnywhere)
{
    RecordFields fields;
    fields.request = 94;
    fields.pipeIndex = 6;
    fields.inData = 0x2000;  // just behind writable memory
    EXPECT_EQ(call(fields), 0);
    fields.inData = 0x8000;
    EXPECT_EQ(call(fields), -EFAULT);
}

TEST_P(RecordTest, WrongPipesForeignRequestsAndDeadDescriptorsAreRefused)
{
    RecordFields fields;
    for (const std::uint32_t pipeIndex : {7U, 0xFFFFFFFFU}) {
        fields.pipeIndex = pipeIndex;
        EXPECT_EQ(call(fields), -EINVAL);
    }
    fields.pipeIndex = 0;
    fields.outLength = 65537;
    EXPECT_EQ(call(fields), -EINVAL);
    EXPECT_EQ(driverIoctl(board, 0xc2108100, 0x1000, GetParam(), caller), -ENOTTY);
    EXPECT_EQ(driverIoctl(board, 0x5401, 0x1000, GetParam(), caller), -ENOTTY);
    caller.put(0x1000, recordBytes({}, GetParam()));
    const DriverCall opened{board.generation(), {}};
    EXPECT_EQ(driverIoctl(board, 0x8400, 0x1000, GetParam(), caller, opened), 0);
    board.unplug();
    EXPECT_EQ(driverIoctl(board, 0x8400, 0x1000, GetParam(), caller, opened), -ENODEV);
    board.plug();
    EXPECT_EQ(driverIoctl(board, 0x8400, 0x1000, GetParam(), caller, opened), -ENODEV);
    EXPECT_EQ(driverIoctl(board, 0x8400, 0x1000, GetParam(), caller), 0);
}

TEST_P(RecordTest, ASlowExchangeTakesItsTimeAndACallerMayLeaveMeanwhile)
{
    const Nanoseconds start = time.now();
    board.faults().add(Fault::slow(std::chrono::milliseconds(20)));
    EXPECT_EQ(call({}), 0);
    EXPECT_EQ(time.now() - start, std::chrono::milliseconds(20));

    board.faults().add(Fault::slow(std::chrono::milliseconds(20)));
    board.clearExchanges();
    const DriverCall leaving{{}, [](Nanoseconds) { return false; }};
    EXPECT_EQ(driverIoctl(board, 0x8400, 0x1000, GetParam(), caller, leaving), -EINTR);
    EXPECT_TRUE(board.exchanges().empty());

    board.faults().add(Fault::slow(std::chrono::milliseconds(20)));
    const DriverCall unplugging{{}, [this](Nanoseconds) {
                                    const auto lock = board.lock();
                                    board.powerCycle();
                                    return true;
                                }};
    EXPECT_EQ(driverIoctl(board, 0x8400, 0x1000, GetParam(), caller, unplugging), 0);
}

class PacketTest : public BoardTest
{
public:
    PacketTest() : BoardTest(Model::R20) {}

    // Sends the code and the payload, 64 bytes at most to come back.
    int send(const Bytes &data, unsigned char pipe = 1)
    {
        std::fill(packet.begin(), packet.end(), static_cast<unsigned char>(0xA5));
        const Bytes header{pipe, 0, 0, 0,  pipe, 0, 0, 0, lowByte(static_cast<std::uint32_t>(data.size())),
                           0,    0, 0, 64, 0,    0, 0};
        std::copy(header.begin(), header.end(), packet.begin());
        std::copy(data.begin(), data.end(), packet.begin() + 16);
        ProcessMemory memory(getpid());
        return driverIoctl(board, 0xc2108100, reinterpret_cast<std::uintptr_t>(packet.data()), ownWidth, memory);
    }

    Bytes received(std::size_t size) const
    {
        return {packet.begin() + 12, packet.begin() + 16 + static_cast<int>(size)};
    }

    Bytes packet = Bytes(528);
};

TEST_F(PacketTest, TheAnswerCarriesCodeStatusAndPayload)
{
    board.inputs().set(8, true);
    EXPECT_EQ(send({75}), 0);
    EXPECT_EQ(received(8), (Bytes{7, 0, 0, 0, 75, 0, 0, 1, 0, 0, 0, 0xA5}));
    EXPECT_EQ(send({85, 7}), 0);
    EXPECT_EQ(received(2), (Bytes{2, 0, 0, 0, 85, 0}));
    EXPECT_EQ(board.outputs().brightness(), 7U);
}

TEST_F(PacketTest, WhatGoesWrongWithAPacket)
{
    EXPECT_EQ(send({75}, 0), -EINVAL);
    EXPECT_EQ(send({75}, 8), -EINVAL);
    EXPECT_EQ(send({}), -EINVAL);
    ProcessMemory memory(getpid());
    const auto address = reinterpret_cast<std::uintptr_t>(packet.data());
    EXPECT_EQ(driverIoctl(board, 0x8400, address, ownWidth, memory), -ENOTTY);
    EXPECT_EQ(driverIoctl(board, 0xc2108100, 8, ownWidth, memory), -EFAULT);
    board.unplug();
    EXPECT_EQ(send({75}), -ENODEV);
}

// The own process is reached through the kernel, so its own wrong pointers are noticed too.
TEST(ProcessMemoryTest, WrongAndReadOnlyPagesAreRefused)
{
    const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    auto *pages = static_cast<unsigned char *>(mmap(nullptr, 2 * size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(pages, MAP_FAILED);
    ASSERT_EQ(mprotect(pages, size, PROT_READ | PROT_WRITE), 0);
    ProcessMemory memory(getpid());
    const auto address = reinterpret_cast<std::uintptr_t>(pages);
    std::uint32_t word = 0;
    EXPECT_TRUE(memory.writable(address + size - 4, 4));
    EXPECT_FALSE(memory.writable(address + size - 2, 4));
    EXPECT_TRUE(memory.read(address + size - 2, &word, 4));
    EXPECT_FALSE(memory.write(address + size, &word, 4));
    EXPECT_FALSE(memory.read(16, &word, 4));
    EXPECT_FALSE(memory.read(UINT64_MAX - 1, &word, 4));
    munmap(pages, 2 * size);
}

}  // namespace sim::driver_test
