// Answers the calls by which the library opens and drives the one board, an R35 at full speed with a running firmware
// and a blank EEPROM. Its node is the file of the trace: the system sees each exchange as an ioctl on it, so that a
// tracer can stop there, and a lock on it is nobody else's.
#include "tests/stress/recording_driver.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

#include "board/rbase_shared_implementation/shared_board_state.h"

namespace
{

using stress::Record;
using stress::Trace;

int boardDescriptor = -1;

/// The record that the driver reads from the caller.
struct TransferRecord {
    std::int32_t *status;
    std::uint32_t pipe;
    unsigned char *out;
    unsigned long outLength;
    unsigned char *in;
    unsigned long *inLength;
    unsigned char request;
};

constexpr unsigned char modifyOutputs = 77, onPeriod = 83, offPeriod = 84;
constexpr unsigned char readEEPROM = 5, firmwareRuns = 74, receiveWithTimestamps = 102;

void writeDown(const TransferRecord &transfer)
{
    Trace &trace = stress::sharedTrace();
    const std::uint32_t place = trace.count.fetch_add(1);
    if (place >= Trace::capacity)
        return;
    Record &record = trace.records[place];
    record.request = transfer.request;
    std::memcpy(record.payload, transfer.out, transfer.outLength);
    std::memcpy(record.mirrorOn, onPattern(stress::boardDevice).bits, sizeof record.mirrorOn);
    std::memcpy(record.mirrorOff, offPattern(stress::boardDevice).bits, sizeof record.mirrorOff);
    record.complete.store(1);
}

/// A batch of two bytes an item; its length depends on where in the stream it begins.
unsigned long nextBatch(unsigned char *bytes)
{
    std::atomic<std::uint32_t> &next = stress::sharedTrace().nextItem;
    const std::uint32_t first = next.load();
    const std::uint32_t items = 1 + first % 101;
    for (std::uint32_t k = 0; k < items; ++k) {
        bytes[2 * k] = static_cast<unsigned char>((first + k) >> 8);
        bytes[2 * k + 1] = static_cast<unsigned char>(first + k);
    }
    next.store(first + items);  // whoever asks holds the buffers' mutex
    return 2 * items;
}

void answer(const TransferRecord &transfer)
{
    *transfer.status = 0;
    *transfer.inLength = 0;
    switch (transfer.request) {
    case modifyOutputs:
    case onPeriod:
    case offPeriod:
        writeDown(transfer);
        break;
    case readEEPROM:
        *transfer.inLength = transfer.out[0];
        std::memset(transfer.in, 0xFF, transfer.out[0]);
        break;
    case firmwareRuns:
        *transfer.inLength = 1;
        transfer.in[0] = 1;
        break;
    case receiveWithTimestamps:
        *transfer.inLength = nextBatch(transfer.in);
        break;
    default:
        break;
    }
}

std::string pathOfBoard(const char *before, const char *after)
{
    return before + std::to_string(stress::boardDevice) + after;
}

}  // namespace

extern "C" {

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const unsigned int mode = flags & O_CREAT ? va_arg(arguments, unsigned int) : 0;
    va_end(arguments);
    const bool board = path == pathOfBoard("/dev/Vexa_", "");
    const long result = ::syscall(SYS_openat, AT_FDCWD, board ? stress::tracePath : path, flags, mode);
    if (board)
        boardDescriptor = static_cast<int>(result);
    return static_cast<int>(result);
}

int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    auto *transfer = va_arg(arguments, TransferRecord *);
    va_end(arguments);
    const bool board = descriptor != -1 && descriptor == boardDescriptor;
    if (board)
        answer(*transfer);  // so that nothing but the library's own work follows the call
    const long result = ::syscall(SYS_ioctl, descriptor, request, transfer);
    return board ? 0 : static_cast<int>(result);
}

FILE *fopen(const char *path, const char *mode)
{
    static char product[] = "Sorvane R35 Board\n", speed[] = "12\n";
    if (path == pathOfBoard("/sys/class/Vexa/Vexa_", "/device/product"))
        return ::fmemopen(product, sizeof product - 1, "r");
    if (path == pathOfBoard("/sys/class/Vexa/Vexa_", "/device/speed"))
        return ::fmemopen(speed, sizeof speed - 1, "r");
    static auto *const next = reinterpret_cast<FILE *(*)(const char *, const char *)>(::dlsym(RTLD_NEXT, "fopen"));
    return next(path, mode);
}
}
