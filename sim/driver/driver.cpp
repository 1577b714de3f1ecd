#include "sim/driver/driver.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace sim
{

namespace
{

constexpr int pipes = 7;

// How long a slow exchange waits before it looks around.
constexpr Nanoseconds glance = std::chrono::milliseconds(50);

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
    const std::size_t size = width == CallerWidth::Bits32 ? 28 : longestRecord;
    if (!memory.read(address, bytes.data(), size))
        return std::nullopt;
    if (width == CallerWidth::Bits32)
        return Record{u32le(bytes, 0),  u32le(bytes, 4),  u32le(bytes, 8), u32le(bytes, 12),
                      u32le(bytes, 16), u32le(bytes, 20), bytes[24]};
    return Record{u64le(bytes, 0),  u32le(bytes, 8),  u64le(bytes, 16), u64le(bytes, 24),
                  u64le(bytes, 32), u64le(bytes, 40), bytes[48]};
}

std::size_t countSize(CallerWidth width)
{
    return width == CallerWidth::Bits32 ? 4 : 8;
}

// Asked with the board's lock held.
bool isThere(const VirtualBoard &board, const DriverCall &call)
{
    return board.plugged() && (!call.generation || *call.generation == board.generation());
}

bool isThereNow(VirtualBoard &board, const DriverCall &call)
{
    const auto lock = board.lockOnly();
    return isThere(board, call);
}

// Called with the board's turn, without its lock. False when the caller is gone. Nobody waits on for a board that was
// pulled off, or when the delay was called off.
bool waitIfSlow(VirtualBoard &board, unsigned char request, int pipe, const DriverCall &call)
{
    Nanoseconds left{};
    unsigned int calledOff = 0;
    {
        const auto lock = board.lockOnly();
        left = board.takeDelay(request, pipe);
        calledOff = board.faults().delaysCalledOff();
    }
    while (left > Nanoseconds::zero()) {
        const Nanoseconds step = std::min(left, glance);
        if (!call.wait)
            board.timeline().clock().pass(step);
        else if (!call.wait(step))
            return false;
        left -= step;
        const auto lock = board.lockOnly();
        if (!isThere(board, call) || board.faults().delaysCalledOff() != calledOff)
            break;
    }
    return true;
}

// Puts bytes into the caller's memory, or leaves all of it as it was.
bool putAll(CallerMemory &memory, std::vector<MemoryPiece> pieces)
{
    std::vector<Bytes> before;
    std::vector<MemoryPiece> old;
    for (const MemoryPiece &piece : pieces) {
        before.emplace_back(piece.size);
        old.push_back({piece.address, before.back().data(), piece.size});
    }
    if (!memory.readAll(old))
        return false;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (!pieces[i].data)
            pieces[i].data = old[i].data;
    }
    if (memory.writeAll(pieces))
        return true;
    for (const MemoryPiece &piece : old)
        memory.write(piece.address, piece.data, piece.size);
    return false;
}

bool deliver(const Record &record, const Exchange &exchange, CallerWidth width, CallerMemory &memory)
{
    Bytes data = exchange.status == 0 ? exchange.received : Bytes{};
    Bytes status = bytesOf32le(static_cast<std::uint32_t>(exchange.status));
    Bytes count = bytesOf32le(static_cast<std::uint32_t>(data.size()));
    count.resize(countSize(width));
    std::vector<MemoryPiece> pieces{{record.statusWord, status.data(), status.size()},
                                    {record.inLength, count.data(), count.size()}};
    if (record.inData == 0)
        return putAll(memory, pieces);
    if (!data.empty()) {
        pieces.insert(pieces.begin(), {record.inData, data.data(), data.size()});
        return putAll(memory, pieces);
    }
    // A buffer in which nothing is put must be one all the same; an answer without bytes may lie behind a full one.
    pieces.push_back({record.inData, nullptr, 1});
    if (putAll(memory, pieces))
        return true;
    --pieces.back().address;
    return putAll(memory, pieces);
}

int carryOut(VirtualBoard &board, const Record &record, const Bytes &payload, CallerWidth width, CallerMemory &memory,
             const DriverCall &call)
{
    const auto lock = board.lockOnly();
    if (!isThere(board, call))
        return -ENODEV;
    PendingExchange pending = board.prepare(record.request, static_cast<int>(record.pipeIndex) + 1, payload);
    if (pending.ioctlResult == 0 && !deliver(record, pending.exchange, width, memory))
        return -EFAULT;
    board.complete(pending);
    return pending.ioctlResult;
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
    const auto lock = board.lockOnly();
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
    if (!record)
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
