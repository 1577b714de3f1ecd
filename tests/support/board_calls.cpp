#include "tests/support/board_calls.h"

#include "tests/support/driver_call.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>

namespace tests
{

namespace
{

bool startsWith(const char *path, const char *prefix)
{
    return std::strncmp(path, prefix, std::strlen(prefix)) == 0;
}

int answerPacket(Packet &packet)
{
    if (packet.sendLength < 1 || packet.sendLength > sizeof packet.data)
        std::abort();
    Exchange exchange = {&packet, sizeof packet, packet.data[0], packet.data + 1, packet.sendLength - 1};
    if (!carryOut(exchange))
        return -1;
    packet.receiveLength = static_cast<std::uint32_t>(exchange.count + 2);
    packet.data[0] = static_cast<unsigned char>(packet.data[0] + exchange.wrongEcho);
    packet.data[1] = static_cast<unsigned char>(exchange.status);
    std::memcpy(packet.data + 2, exchange.bytes, exchange.length);
    return exchange.result;
}

int answerRecord(const Record &record)
{
    Exchange exchange = {&record, sizeof record, record.request, record.outData, record.outLength};
    if (!carryOut(exchange))
        return -1;
    *record.status = exchange.status;
    *record.inLength = exchange.count;
    if (record.inData)
        std::memcpy(record.inData, exchange.bytes, exchange.length);
    return exchange.result;
}

}  // namespace

}  // namespace tests

extern "C" {
int __real_open(const char *path, int flags, ...);
std::FILE *__real_fopen(const char *path, const char *mode);
int __real_ioctl(int descriptor, unsigned long request, ...);

int __wrap_open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): it has just been started
    const mode_t mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (tests::callFails("open"))
        return -1;
    return __real_open(tests::startsWith(path, "/dev/Vexa_") ? tests::nodeFile : path, flags, mode);
}

std::FILE *__wrap_fopen(const char *path, const char *mode)
{
    if (tests::callFails("fopen"))
        return nullptr;
    if (!tests::startsWith(path, "/sys/class/Vexa/"))
        return __real_fopen(path, mode);
    const char *text = tests::attributeText(std::strstr(path, "product") != nullptr);
    std::FILE *file = text ? std::tmpfile() : nullptr;  // with a descriptor, as every other
    if (file) {
        std::fputs(text, file);
        std::rewind(file);
    }
    return file;
}

/// The system sees the exchange, too, so that a tracer can stop there; by then its work is done.
int __wrap_ioctl(int descriptor, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void *call = va_arg(arguments, void *);
    va_end(arguments);
    const int result = request == packetNumber ? tests::answerPacket(*static_cast<Packet *>(call))
                                               : tests::answerRecord(*static_cast<Record *>(call));
    const int error = errno;
    __real_ioctl(descriptor, request, call);
    errno = error;
    return result;
}
}
