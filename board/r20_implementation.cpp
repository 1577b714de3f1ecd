// The R20's transport: request and answer travel in one packet that the driver fills in place.
#include "board/r20_implementation.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sys/ioctl.h>

namespace
{

struct R20TransferPacket {
    std::uint32_t sendPipe;
    std::uint32_t receivePipe;
    std::uint32_t sendLength;
    std::uint32_t receiveLength;  // in: the most bytes to receive; out: the bytes received
    unsigned char data[512];      // out: request code, payload; in: echoed code, status, payload
};
static_assert(sizeof(R20TransferPacket) == 528);
static_assert(offsetof(R20TransferPacket, receivePipe) == 4 && offsetof(R20TransferPacket, sendLength) == 8);
static_assert(offsetof(R20TransferPacket, receiveLength) == 12 && offsetof(R20TransferPacket, data) == 16);

constexpr unsigned long transferRequest = 0xc2108100;
constexpr std::uint32_t longestAnswer = 64;
constexpr std::uint32_t answerHeader = 2;

}  // namespace

R20Implementation::R20Implementation(SorvaneUSB *owner, int deviceHandle, int speed, int deviceNo)
    : RBaseImplementation(owner, deviceHandle, speed, deviceNo)
{
}

int R20Implementation::PerformUSBIO(unsigned char request, int pipe, unsigned char *outData, unsigned long outLength,
                                    unsigned char *inData, unsigned long *inLength)
{
    R20TransferPacket packet;

    if (!inLength)
        return Fail(usbErrorNullPointer);
    if (outLength > sizeof packet.data - 1)
        return Fail(usbErrorLength);

    packet.sendPipe = packet.receivePipe = static_cast<std::uint32_t>(pipe);
    packet.sendLength = static_cast<std::uint32_t>(outLength + 1);
    packet.receiveLength = longestAnswer;
    packet.data[0] = request;
    if (outData)
        std::memcpy(packet.data + 1, outData, outLength);
    else if (outLength)
        std::memset(packet.data + 1, 0, outLength);

    if (::ioctl(GetDeviceHandle(0), transferRequest, &packet) != 0)
        return Fail(usbErrorTransfer);

    const std::uint32_t count = packet.receiveLength;
    if (count < answerHeader || count > longestAnswer)
        return Fail(usbErrorLength);
    if (packet.data[0] != request)
        return Fail(usbErrorTransfer);
    if (packet.data[1] != 0)
        return Fail(static_cast<_usbErrorCode>(static_cast<signed char>(packet.data[1])));

    *inLength = count - answerHeader;
    if (inData)
        std::memcpy(inData, packet.data + answerHeader, count - answerHeader);
    return 1;
}
