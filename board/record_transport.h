// The driver interface of R20s and R35: a record of addresses from which the driver fetches the payload and to which
// it delivers answer, count and status.
#ifndef SORVANE_BOARD_RECORD_TRANSPORT_H
#define SORVANE_BOARD_RECORD_TRANSPORT_H

#include "board/rbase_implementation.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <sys/ioctl.h>

/// The driver reads it in the layout of the calling process: 28 bytes from a 32-bit one, 56 from a 64-bit one.
struct R20sTransferRequest {
    static constexpr unsigned long ioctlNumber = 0x8400;
    static constexpr int lastPipe = 7;

    std::int32_t *statusWord;
    std::uint32_t pipeIndex;
    unsigned char *outData;
    unsigned long outLength;
    unsigned char *inData;
    unsigned long *inLength;
    unsigned char request;
};
constexpr bool wide = sizeof(void *) == 8;
static_assert(sizeof(R20sTransferRequest) == (wide ? 56 : 28));
static_assert(offsetof(R20sTransferRequest, pipeIndex) == (wide ? 8 : 4));
static_assert(offsetof(R20sTransferRequest, outData) == (wide ? 16 : 8));
static_assert(offsetof(R20sTransferRequest, outLength) == (wide ? 24 : 12));
static_assert(offsetof(R20sTransferRequest, inData) == (wide ? 32 : 16));
static_assert(offsetof(R20sTransferRequest, inLength) == (wide ? 40 : 20));
static_assert(offsetof(R20sTransferRequest, request) == (wide ? 48 : 24));

/// One exchange. The status word is 0 before the call; the caller's count is left to the driver and becomes 0 when
/// the driver's call fails.
inline int exchangeByRecord(int deviceHandle, unsigned char request, int pipe, unsigned char *outData,
                            unsigned long outLength, unsigned char *inData, unsigned long *inLength)
{
    if (pipe > R20sTransferRequest::lastPipe) {
        std::fprintf(stderr, "pipeNum = %d\n", pipe);
        return RBaseImplementation::Fail(usbErrorPipeNumber);
    }
    if (!inLength)
        return RBaseImplementation::Fail(usbErrorNullPointer);

    std::int32_t status = 0;
    R20sTransferRequest record = {&status, static_cast<std::uint32_t>(pipe) - 1, outData, outLength, inData, inLength,
                                  request};
    if (::ioctl(deviceHandle, R20sTransferRequest::ioctlNumber, &record) != 0) {
        *inLength = 0;
        return RBaseImplementation::Fail(usbErrorTransfer);
    }
    if (status != 0)
        return RBaseImplementation::Fail(static_cast<_usbErrorCode>(status));
    return RBaseImplementation::ClearErrors();
}

#endif
