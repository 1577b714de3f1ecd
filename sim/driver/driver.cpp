#include "sim/driver/driver.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace sim
{

namespace
{

constexpr int pipes = 7;

// Of an R20 packet.
constexpr std::size_t sendPipeAt = 0;
constexpr std::size_t receivePipeAt = 4;
constexpr std::size_t sendLengthAt = 8;
constexpr std::size_t receiveLengthAt = 12;
constexpr std::size_t dataAt = 16;
constexpr std::size_t dataSize = packetSize - dataAt;
constexpr std::uint32_t transferUnit = 64;

// Of a record.
constexpr std::size_t longestRecord = 56;
constexpr std::uint64_t longestPayload = 65536;

struct Record {
    std::uint64_t statusWord;
    std::uint32_t pipeIndex;
    std::uint64_t outData;
    std::uint64_t outLength;
    std::uint64_t inData;
    std::uint64_t inLength;
    unsigned char request;
};

std::uint64_t u64le(Payload bytes, std::size_t at)
{
    return u32le(bytes, at) | static_cast<std::uint64_t>(u32le(bytes, at + 4)) << 32;
}

void put32le(unsigned char *to, std::uint32_t value)
{
    const Bytes bytes = bytesOf32le(value);
    std::copy(bytes.begin(), bytes.end(), to);
}

std::optional<Record> readRecord(std::uint64_t address, CallerWidth width, CallerMemory &memory)
{
    std::array<unsigned char, longestRecord> bytes{};
    const std::size_t size = width == CallerWidth::bits32 ? 28 : longestRecord;
    if (!memory.read(address, bytes.data(), size))
        return std::nullopt;
    if (width == CallerWidth::bits32)
        return Record{u32le(bytes, 0),  u32le(bytes, 4),  u32le(bytes, 8), u32le(bytes, 12),
                      u32le(bytes, 16), u32le(bytes, 20), bytes[24]};
    return Record{u64le(bytes, 0),  u32le(bytes, 8),  u64le(bytes, 16), u64le(bytes, 24),
                  u64le(bytes, 32), u64le(bytes, 40), bytes[48]};
}

std::size_t countSize(CallerWidth width)
{
    return width == CallerWidth::bits32 ? 4 : 8;
}

// Asked with the board's lock held.
bool isThere(const VirtualBoard &board, const DriverCall &call)
{
    return board.plugged() && (!call.generation || *call.generation == board.generation());
}

bool isThereNow(VirtualBoard &board, const DriverCall &call)
{
    const auto lock = board.lock();
    return isThere(board, call);
}

// Called with the board's turn, without its lock. False when the caller is gone.
bool waitIfSlow(VirtualBoard &board, unsigned char request, int pipe, const DriverCall &call)
{
    Nanoseconds delay{};
    {
        const auto lock = board.lock();
        delay = board.faults().takeDelay(request, pipe);
    }
    if (delay == Nanoseconds::zero())
        return true;
    if (call.wait)
        return call.wait(delay);
    board.timeline().clock().pass(delay);
    return true;
}

// An answer without bytes may go behind the end of a buffer that is full.
bool canTake(CallerMemory &memory, std::uint64_t inData, std::size_t size)
{
    if (inData == 0)
        return true;
    if (size > 0)
        return memory.writable(inData, size);
    return memory.writable(inData, 1) || memory.writable(inData - 1, 1);
}

bool deliver(const Record &record, const Exchange &exchange, CallerWidth width, CallerMemory &memory)
{
    const std::size_t size = exchange.status == 0 ? exchange.received.size() : 0;
    const auto status = bytesOf32le(static_cast<std::uint32_t>(exchange.status));
    Bytes count = bytesOf32le(static_cast<std::uint32_t>(size));
    count.resize(countSize(width));
    const bool dataArrived =
        size == 0 || record.inData == 0 || memory.write(record.inData, exchange.received.data(), size);
    return dataArrived && memory.write(record.inLength, count.data(), count.size()) &&
           memory.write(record.statusWord, status.data(), status.size());
}

int carryOut(VirtualBoard &board, const Record &record, const Bytes &payload, CallerWidth width, CallerMemory &memory,
             const DriverCall &call)
{
    const auto lock = board.lock();
    if (!isThere(board, call))
        return -ENODEV;
    PendingExchange pending = board.prepare(record.request, static_cast<int>(record.pipeIndex) + 1, payload);
    const std::size_t size = pending.exchange.status == 0 ? pending.exchange.received.size() : 0;
    if (!canTake(memory, record.inData, size))
        return -EFAULT;
    board.complete(pending);
    if (pending.ioctlResult != 0)
        return pending.ioctlResult;
    return deliver(record, pending.exchange, width, memory) ? 0 : -EFAULT;
}

void fillPacket(const PendingExchange &pending, unsigned char *packet)
{
    const Bytes &received = pending.exchange.received;
    const std::uint32_t room = u32le({packet, packetSize}, receiveLengthAt);
    std::uint32_t count = static_cast<std::uint32_t>(received.size()) + 2;
    // Only a fault makes a board send more than a transfer holds; the caller then sees more than it asked for.
    if (room < transferUnit)
        count = std::min(count, room);
    Bytes data{pending.echo, lowByte(static_cast<std::uint32_t>(pending.exchange.status))};
    append(data, received);
    data.resize(std::min<std::size_t>({data.size(), count, dataSize}));
    std::copy(data.begin(), data.end(), packet + dataAt);
    put32le(packet + receiveLengthAt, pending.packetCount.value_or(count));
}

int packetIoctl(VirtualBoard &board, std::uint64_t address, CallerMemory &memory, const DriverCall &call)
{
    std::array<unsigned char, packetSize> packet{};
    if (!memory.read(address, packet.data(), packet.size()) || !memory.write(address, packet.data(), packet.size()))
        return -EFAULT;
    const int result = packetExchange(board, packet.data(), call);
    if (result != 0)
        return result;
    return memory.write(address, packet.data(), packet.size()) ? 0 : -EFAULT;
}

}  // namespace

int packetExchange(VirtualBoard &board, unsigned char *packet, const DriverCall &call)
{
    if (!isThereNow(board, call))
        return -ENODEV;
    const Payload bytes(packet, packetSize);
    const std::uint32_t pipe = u32le(bytes, sendPipeAt);
    const std::uint32_t length = u32le(bytes, sendLengthAt);
    if (pipe < 1 || pipe > pipes || u32le(bytes, receivePipeAt) != pipe || length < 1 || length > dataSize)
        return -EINVAL;
    const auto turn = board.turn();
    if (!waitIfSlow(board, packet[dataAt], static_cast<int>(pipe), call))
        return -EINTR;
    const auto lock = board.lock();
    if (!isThere(board, call))
        return -ENODEV;
    PendingExchange pending =
        board.prepare(packet[dataAt], static_cast<int>(pipe), bytes.subspan(dataAt + 1, length - 1));
    board.complete(pending);
    if (pending.ioctlResult == 0)
        fillPacket(pending, packet);
    return pending.ioctlResult;
}

int recordExchange(VirtualBoard &board, std::uint64_t recordAddress, CallerWidth width, CallerMemory &memory,
                   const DriverCall &call)
{
    if (!isThereNow(board, call))
        return -ENODEV;
    const std::optional<Record> record = readRecord(recordAddress, width, memory);
    if (!record || !memory.writable(record->statusWord, 4) || !memory.writable(record->inLength, countSize(width)))
        return -EFAULT;
    if (record->pipeIndex >= pipes || record->outLength > longestPayload)
        return -EINVAL;
    Bytes payload(static_cast<std::size_t>(record->outLength));
    if (!payload.empty() && !memory.read(record->outData, payload.data(), payload.size()))
        return -EFAULT;
    const auto turn = board.turn();
    if (!waitIfSlow(board, record->request, static_cast<int>(record->pipeIndex) + 1, call))
        return -EINTR;
    return carryOut(board, *record, payload, width, memory, call);
}

int driverIoctl(VirtualBoard &board, unsigned long request, std::uint64_t argument, CallerWidth width,
                CallerMemory &memory, const DriverCall &call)
{
    if (!isThereNow(board, call))
        return -ENODEV;
    const bool packets = board.model() == Model::R20;
    if ((request & 0xFFFFFFFF) != (packets ? packetRequest : recordRequest))
        return -ENOTTY;
    return packets ? packetIoctl(board, argument, memory, call) : recordExchange(board, argument, width, memory, call);
}

}  // namespace sim
