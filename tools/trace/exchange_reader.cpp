#include "tools/trace/exchange_reader.h"

#include "tools/trace/driver_protocol.h"
#include "tools/trace/program_memory.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fstream>
#include <unistd.h>

namespace trace
{

namespace
{

// An R20's packet: both ways one block of bytes.
constexpr std::size_t packetSize = 528;
constexpr std::size_t pipePlace = 0;
constexpr std::size_t sentPlace = 8;
constexpr std::size_t receivedPlace = 12;
constexpr std::size_t dataPlace = 16;
constexpr std::size_t dataSize = packetSize - dataPlace;
using driver_protocol::answerHeader;

constexpr std::size_t longestRecord = 56;
constexpr std::uint64_t longestTransfer = 65536;

constexpr int lastRestart = 516;  // of the kernel's own results for a call that a signal came into
constexpr int firstRestart = 512;

using Packet = std::array<unsigned char, packetSize>;

std::uint32_t u32(const unsigned char *bytes)
{
    std::uint32_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// A word of the width of the caller's addresses.
std::uint64_t word(const unsigned char *bytes, Width width)
{
    if (width == Width::Bits32)
        return u32(bytes);
    std::uint64_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// The number of the board whose node this is; a node that is gone already keeps its name, with a remark behind it.
std::optional<int> boardOf(pid_t thread, int descriptor)
{
    const std::string link = "/proc/" + std::to_string(thread) + "/fd/" + std::to_string(descriptor);
    std::array<char, PATH_MAX> path{};
    int device = 0;
    int end = 0;
    if (::readlink(link.c_str(), path.data(), path.size() - 1) <= 0 ||
        std::sscanf(path.data(), "/dev/Vexa_%3d%n", &device, &end) != 1)
        return std::nullopt;
    const std::string_view rest = path.data() + end;
    return rest.empty() || rest == " (deleted)" ? std::optional(device) : std::nullopt;
}

std::string bytesAt(pid_t thread, std::uint64_t address, std::uint64_t size)
{
    std::string bytes(static_cast<std::size_t>(std::min(size, longestTransfer)), '\0');
    if (!bytes.empty() && !readMemory(thread, address, bytes.data(), bytes.size()))
        bytes.clear();
    return bytes;
}

std::string text(const unsigned char *bytes, std::size_t size)
{
    return {reinterpret_cast<const char *>(bytes), size};
}

void readQuestion(Begun &begun, const Packet &packet)
{
    const std::uint32_t sent = std::min<std::uint32_t>(u32(&packet[sentPlace]), dataSize);
    begun.event.pipe = packet[pipePlace];
    begun.event.request = packet[dataPlace];
    begun.event.before = text(&packet[dataPlace + 1], std::max(sent, 1U) - 1);
}

void readQuestion(Begun &begun, pid_t thread)
{
    const Width width = begun.call.width;
    const std::size_t size = width == Width::Bits32 ? 4 : 8;
    std::array<unsigned char, longestRecord> record{};
    if (!readMemory(thread, begun.call.argument, record.data(), 7 * size))
        return;
    const auto field = [&](std::size_t number) { return word(&record[number * size], width); };
    begun.statusAt = field(0);
    begun.event.pipe = static_cast<unsigned char>(u32(&record[size]) + 1);
    begun.answerAt = field(4);
    begun.countAt = field(5);
    begun.event.request = record[6 * size];
    begun.event.before = bytesAt(thread, field(2), field(3));
}

void fail(journal::Event &event, int error)
{
    event.outcome = protocol::Outcome::Failed;
    event.status = error;
}

void settle(journal::Event &event, int status, std::string answer)
{
    event.status = status;
    event.outcome = status == 0 ? protocol::Outcome::Success : protocol::Outcome::Refused;
    if (status == 0)
        event.bytes = std::move(answer);
}

void readPacketAnswer(Begun &begun)
{
    Packet packet;
    if (!readMemory(begun.event.thread, begun.call.argument, packet.data(), packet.size()))
        return fail(begun.event, EFAULT);
    const std::uint32_t count = u32(&packet[receivedPlace]);
    if (count < answerHeader || count > dataSize || packet[dataPlace] != begun.event.request)
        return fail(begun.event, EPROTO);
    settle(begun.event, static_cast<signed char>(packet[dataPlace + 1]),
           text(&packet[dataPlace + answerHeader], count - answerHeader));
}

void readRecordAnswer(Begun &begun)
{
    const pid_t thread = begun.event.thread;
    const Width width = begun.call.width;
    std::int32_t status = 0;
    std::array<unsigned char, 8> count{};
    if (!readMemory(thread, begun.statusAt, &status, sizeof status) ||
        !readMemory(thread, begun.countAt, count.data(), width == Width::Bits32 ? 4 : 8))
        return fail(begun.event, EFAULT);
    settle(begun.event, status, bytesAt(thread, begun.answerAt, word(count.data(), width)));
}

}  // namespace

// Asked once of a board: the attribute may cost as much as an exchange.
protocol::Model ExchangeReader::modelOf(pid_t thread, int device)
{
    const auto known = models_.find(device);
    if (known != models_.end())
        return known->second;
    const std::string board = "Vexa_" + std::to_string(device);
    std::ifstream attribute("/proc/" + std::to_string(thread) + "/root/sys/class/Vexa/" + board + "/device/product");
    std::string product;
    std::getline(attribute, product);
    const protocol::Model model =
        product.starts_with("Sorvane R20s Board") ? protocol::Model::R20s : protocol::Model::R35;
    if (!product.empty())
        models_[device] = model;
    return model;
}

std::optional<Begun> ExchangeReader::begin(pid_t thread, const DriverCall &call)
{
    const std::optional<int> device = boardOf(thread, call.descriptor);
    if (!device)
        return std::nullopt;
    Begun begun;
    begun.call = call;
    begun.event.device = *device;
    begun.event.thread = thread;
    begun.event.model = call.packet ? protocol::Model::R20 : modelOf(thread, *device);
    Packet packet;
    if (!call.packet)
        readQuestion(begun, thread);
    else if (readMemory(thread, call.argument, packet.data(), packet.size()))
        readQuestion(begun, packet);
    return begun;
}

void ExchangeReader::finish(Begun &begun, std::int64_t result)
{
    if (-result >= firstRestart && -result <= lastRestart)
        fail(begun.event, EINTR);
    else if (result != 0)
        fail(begun.event, result < 0 ? static_cast<int>(-result) : EPROTO);
    else if (begun.call.packet)
        readPacketAnswer(begun);
    else
        readRecordAnswer(begun);
    if (result == -ENODEV)
        models_.erase(begun.event.device);
}

}  // namespace trace
