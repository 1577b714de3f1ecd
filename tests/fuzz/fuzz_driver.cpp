#include "tests/fuzz/fuzz_driver.h"

#include <cerrno>
#include <cstdarg>
#include <fcntl.h>

#include "board/rbase_shared_implementation/shared_board_state.h"

namespace fuzz
{

constinit Driver driver;

void openBoard(SorvaneUSB &board, int deviceNo)
{
    onPattern(deviceNo) = {};
    offPattern(deviceNo) = {};
    eepromEntry(deviceNo) = {};
    receiveBuffer(deviceNo) = {};
    board.InitPort(deviceNo);
    driver.exchanges = 0;
}

namespace
{

constexpr unsigned int largestAnswer = 256;

/// What one exchange comes to. Each bit of the first byte makes one thing wrong, so that most exchanges go well.
struct Answer {
    Answer()
    {
        Input &input = *driver.input;
        const bool endless = input.ended();
        const unsigned int flags = input.take<std::uint8_t>();
        result = (flags & 7) == 7 ? -1 : (flags & 7) == 6 ? 1 : 0;
        status = flags & 8 ? input.take<std::int32_t>() : 0;
        wrongEcho = (flags & 16) != 0;
        length = endless ? driver.endlessBytes : flags & 32 ? largestAnswer : input.take<std::uint8_t>();
        std::memset(bytes, 1, sizeof bytes);
        if (driver.answersLeft == 0)
            length = 0;
        else if (length > driver.bytesWithoutData)
            --driver.answersLeft;
        if (!endless)
            input.fill(bytes, length);
        if (driver.answersLeft == 0)
            bytes[1] = 0;  // no part follows
        count = flags & 64 && !driver.truthful ? input.take<unsigned long>() : length;
    }

    int result;
    int status;
    bool wrongEcho;
    unsigned int length;
    unsigned long count;
    unsigned char bytes[largestAnswer];
};

void readAll(const unsigned char *payload, unsigned long length)
{
    static volatile unsigned char seen;
    for (unsigned long k = 0; k < length; ++k)
        seen = payload[k];
    static_cast<void>(seen);
    driver.sentBytes = length;
}

struct Packet {
    std::uint32_t sendPipe, receivePipe, sendLength, receiveLength;
    unsigned char data[512];
};

int answerPacket(Packet &packet)
{
    require(packet.sendLength >= 1 && packet.sendLength <= sizeof packet.data, "an R20 packet holds what is sent");
    readAll(packet.data, packet.sendLength);
    driver.sentBytes = packet.sendLength - 1;
    const Answer answer;
    packet.receiveLength = static_cast<std::uint32_t>(answer.count + 2);
    packet.data[0] = static_cast<unsigned char>(packet.data[0] + answer.wrongEcho);
    packet.data[1] = static_cast<unsigned char>(answer.status);
    std::memcpy(packet.data + 2, answer.bytes, answer.length);
    return answer.result;
}

struct Record {
    std::int32_t *status;
    std::uint32_t pipe;
    unsigned char *outData;
    unsigned long outLength;
    unsigned char *inData;
    unsigned long *inLength;
    unsigned char request;
};

int answerRecord(const Record &record)
{
    if (record.outLength)
        readAll(record.outData, record.outLength);
    driver.sentBytes = record.outLength;
    const Answer answer;
    *record.status = answer.status;
    *record.inLength = answer.count;
    if (record.inData)
        std::memcpy(record.inData, answer.bytes, answer.length);
    return answer.result;
}

bool startsWith(const char *path, const char *prefix)
{
    return std::strncmp(path, prefix, std::strlen(prefix)) == 0;
}

std::FILE *attribute(const char *path)
{
    const char *const products[] = {"\xFF\n", "Sorvane R20 Board\n", "Sorvane R20s Board\n", "Sorvane R35 Board\n"};
    const char *const speeds[] = {"", "12\n", "480\n"};
    const char *text = std::strstr(path, "product") ? products[driver.model % 4] : speeds[driver.speed % 3];
    const std::size_t length = std::strlen(text);
    return length ? ::fmemopen(const_cast<char *>(text), length, "r") : nullptr;
}

}  // namespace

}  // namespace fuzz

extern "C" {
int __real_open(const char *path, int flags, ...);
std::FILE *__real_fopen(const char *path, const char *mode);

int __wrap_open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return __real_open(fuzz::startsWith(path, "/dev/Vexa_") ? "/dev/null" : path, flags, mode);
}

std::FILE *__wrap_fopen(const char *path, const char *mode)
{
    return fuzz::startsWith(path, "/sys/class/Vexa/") ? fuzz::attribute(path) : __real_fopen(path, mode);
}

int __wrap_ioctl(int, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    ++fuzz::driver.exchanges;
    errno = EIO;
    return request == 0xc2108100 ? fuzz::answerPacket(*static_cast<fuzz::Packet *>(argument))
                                 : fuzz::answerRecord(*static_cast<fuzz::Record *>(argument));
}
}
