// A program that talks to a device node with nothing but system calls, in this build's width. It reads orders from its
// input, one a line, and answers each with a line:
//
//   open N, close               the node /dev/Vexa_N, for all that follows
//   ask REQUEST PIPE [BYTE...]  one exchange in the open board's protocol: "ok COUNT BYTES", "status S" or an error
//   other                       the other protocol's request number
//   unknown                     a request number of nobody's
//   pointers                    every wrong pointer in turn: "refused", or what was let through
//   product N, speed N          the attribute, or an error
//   flood COUNT INTERVAL        ModifyOutputs COUNT times with growing patterns, under SIGALRM every INTERVAL us
#include "tests/support/driver_call.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <unistd.h>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;

int node = -1;
bool packets = false;

std::string attribute(int deviceNo, const std::string &name)
{
    std::ifstream file("/sys/class/Vexa/Vexa_" + std::to_string(deviceNo) + "/device/" + name);
    std::string line;
    return std::getline(file, line) ? line : strerrorname_np(errno);
}

std::string answer(unsigned long count, const unsigned char *bytes)
{
    std::string text = "ok " + std::to_string(count);
    for (unsigned long at = 0; at < count; ++at)
        text += " " + std::to_string(bytes[at]);
    return text;
}

std::string askByPacket(unsigned char request, unsigned int pipe, const Bytes &payload)
{
    Packet packet{pipe, pipe, static_cast<std::uint32_t>(payload.size() + 1), 64, {request}};
    std::copy(payload.begin(), payload.end(), packet.data + 1);
    if (const int result = ::ioctl(node, packetNumber, &packet); result != 0)
        return result > 0 ? "result " + std::to_string(result) : strerrorname_np(errno);
    if (packet.receiveLength < 2 || packet.receiveLength > 64)
        return "count " + std::to_string(packet.receiveLength);
    if (packet.data[0] != request)
        return "echo " + std::to_string(packet.data[0]);
    if (packet.data[1] != 0)
        return "status " + std::to_string(packet.data[1]);
    return answer(packet.receiveLength - 2, packet.data + 2);
}

std::string askByRecord(unsigned char request, unsigned int pipe, const Bytes &payload)
{
    std::int32_t status = -1;
    unsigned char in[256];
    unsigned long count = 999;
    Record record{&status, pipe - 1, payload.data(), payload.size(), in, &count, request};
    if (const int result = ::ioctl(node, recordNumber, &record); result != 0)
        return result > 0 ? "result " + std::to_string(result) : strerrorname_np(errno);
    return status != 0 ? "status " + std::to_string(status) : answer(count, in);
}

std::string ask(unsigned char request, unsigned int pipe, const Bytes &payload)
{
    return packets ? askByPacket(request, pipe, payload) : askByRecord(request, pipe, payload);
}

std::string tryNumber(unsigned long number)
{
    alignas(8) unsigned char bytes[sizeof(Packet)] = {};
    return ::ioctl(node, number, bytes) == 0 ? "ok" : strerrorname_np(errno);
}

// Sends ModifyOutputs, which a board would not forget, with one pointer wrong. The caller's memory stays as it was.
std::string wrongPointers()
{
    const auto map = [](int protection) {
        return static_cast<unsigned char *>(::mmap(nullptr, 4096, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    };
    unsigned char *const missing = map(PROT_NONE);
    unsigned char *const readOnly = map(PROT_READ | PROT_WRITE);
    const Bytes ones(10, 0xFF);
    std::string let;
    const auto expectFault = [&let](const char *what, unsigned long number, void *argument) {
        errno = 0;
        if (::ioctl(node, number, argument) != -1 || errno != EFAULT)
            let += std::string(" ") + what;
    };
    if (packets) {
        Packet packet{1, 1, 11, 64, {77}};
        std::memcpy(packet.data + 1, ones.data(), ones.size());
        std::memcpy(readOnly, &packet, sizeof packet);
        ::mprotect(readOnly, 4096, PROT_READ);
        expectFault("null", packetNumber, nullptr);
        expectFault("missing", packetNumber, missing);
        expectFault("read-only", packetNumber, readOnly);
    } else {
        ::mprotect(readOnly, 4096, PROT_READ);
        std::int32_t status = 7;
        unsigned char in[256] = {5};
        unsigned long count = 6;
        const Record good{&status, 0, ones.data(), ones.size(), in, &count, 77};
        Record bad;
        for (unsigned char *wrong : {static_cast<unsigned char *>(nullptr), missing, readOnly}) {
            expectFault("status", recordNumber, &((bad = good).status = reinterpret_cast<std::int32_t *>(wrong), bad));
            expectFault("count", recordNumber,
                        &((bad = good).inLength = reinterpret_cast<unsigned long *>(wrong), bad));
            if (wrong)
                expectFault("answer", recordNumber,
                            &((bad = good).inData = wrong, bad.request = 75, bad.outLength = 0, bad));
            if (wrong != readOnly) {
                expectFault("payload", recordNumber, &((bad = good).outData = wrong, bad));
                expectFault("record", recordNumber, wrong);
            }
        }
        if (status != 7 || in[0] != 5 || count != 6)
            let += " memory-changed";
    }
    return let.empty() ? "refused" : "let through:" + let;
}

// Signals that do not kill come in the middle of it; every exchange must succeed.
std::string flood(int count, int interval)
{
    struct sigaction nothing {
    };
    nothing.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &nothing, nullptr);
    const itimerval often{{0, interval}, {0, interval}};
    const itimerval never{};
    ::setitimer(ITIMER_REAL, &often, nullptr);
    std::string failure;
    for (int n = 1; n <= count && failure.empty(); ++n) {
        const auto low = static_cast<unsigned char>(n & 0xFF);
        const std::string result = ask(77, 1, {low, 0, 0, 0, 0, low, 0, 0, 0, 0});
        if (result != "ok 0")
            failure = "exchange " + std::to_string(n) + ": " + result;
    }
    ::setitimer(ITIMER_REAL, &never, nullptr);
    return failure.empty() ? "all" : failure;
}

std::string openNode(int deviceNo)
{
    packets = attribute(deviceNo, "product") == "Sorvane R20 Board";
    node = ::open(("/dev/Vexa_" + std::to_string(deviceNo)).c_str(), O_RDWR | O_CLOEXEC);
    return node >= 0 ? "open" : strerrorname_np(errno);
}

std::string obey(std::istringstream &order)
{
    std::string what;
    int first = 0;
    int second = 0;
    order >> what >> first >> second;
    if (what == "open")
        return openNode(first);
    if (what == "close")
        return ::close(node) == 0 ? "closed" : strerrorname_np(errno);
    if (what == "product" || what == "speed")
        return attribute(first, what);
    if (what == "other")
        return tryNumber(packets ? recordNumber : packetNumber);
    if (what == "unknown")
        return tryNumber(0x8401);
    if (what == "pointers")
        return wrongPointers();
    if (what == "exit")
        std::exit(first);
    if (what == "flood")
        return flood(first, second);
    Bytes payload;
    for (int byte; order >> byte;)
        payload.push_back(static_cast<unsigned char>(byte));
    return what == "ask" ? ask(static_cast<unsigned char>(first), static_cast<unsigned int>(second), payload) : "what?";
}

}  // namespace

int main()
{
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream order(line);
        std::cout << obey(order) << std::endl;
    }
}
