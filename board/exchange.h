// The words that the device families are written in. Tell sends a request and ignores the answer, Ask sends one and
// hands the answer over, AskInto receives it in the caller's own buffer. Each is one exchange through the model's
// PerformUSBIO and returns its result.
#ifndef SORVANE_BOARD_EXCHANGE_H
#define SORVANE_BOARD_EXCHANGE_H

#include "board/payload.h"
#include "board/rbase_implementation.h"
#include "board/transfer_range.h"

/// What a board answered. Its first bytes, so many as are decoded, may be read by their place: where the answer was
/// shorter they are 0. For an answer that is only copied by its count these are none. Nothing is cleared before the
/// exchange.
template <unsigned long Decoded>
class Response
{
public:
    unsigned char u8(unsigned int place) const { return bytes[place]; }
    unsigned short u16be(unsigned int place) const
    {
        return static_cast<unsigned short>(u8(place) << 8 | u8(place + 1));
    }
    unsigned short u16le(unsigned int place) const
    {
        return static_cast<unsigned short>(u8(place + 1) << 8 | u8(place));
    }
    unsigned long u32le(unsigned int place) const
    {
        return u8(place) | static_cast<unsigned long>(u8(place + 1)) << 8 |
               static_cast<unsigned long>(u8(place + 2)) << 16 | static_cast<unsigned long>(u8(place + 3)) << 24;
    }

    /// Copies what fits in room bytes, and returns how many these are.
    unsigned long copyTo(unsigned char *to, unsigned long room) const
    {
        const unsigned long size = fitting(count, room);
        std::memcpy(to, bytes, size);
        return size;
    }

    /// Cuts the count to the buffer, whatever the driver said, and clears what is decoded but has not come.
    void settle()
    {
        if (count > sizeof bytes)
            count = sizeof bytes;
        if (count < Decoded)
            std::memset(bytes + count, 0, Decoded - count);
    }

    unsigned char bytes[usbLargestAnswer];
    unsigned long count = 0;
};

template <unsigned long Decoded>
int RBaseImplementation::AskWith(Request request, Response<Decoded> &response, unsigned char *payload,
                                 unsigned long length)
{
    response.count = 0;
    if (!PerformUSBIO(codeOf(request), pipeOf(request), payload, length, response.bytes, &response.count))
        return 0;
    response.settle();
    return 1;
}

inline int RBaseImplementation::TellWith(Request request, unsigned char *payload, unsigned long length)
{
    unsigned char ignored[usbLargestAnswer];
    unsigned long count = 0;
    return PerformUSBIO(codeOf(request), pipeOf(request), payload, length, ignored, &count);
}

template <unsigned long Decoded, class... Byte>
int RBaseImplementation::Ask(Request request, Response<Decoded> &response, Byte... bytes)
{
    if constexpr (sizeof...(bytes) == 0) {
        return AskWith(request, response, nullptr, 0);
    } else {
        unsigned char payload[] = {low(bytes)...};
        return AskWith(request, response, payload, sizeof payload);
    }
}

template <class... Byte>
int RBaseImplementation::Tell(Request request, Byte... bytes)
{
    if constexpr (sizeof...(bytes) == 0) {
        return TellWith(request, nullptr, 0);
    } else {
        unsigned char payload[] = {low(bytes)...};
        return TellWith(request, payload, sizeof payload);
    }
}

/// The count is the transport's own word: nothing cuts it, since only the caller knows the buffer's size.
inline int RBaseImplementation::AskInto(Request request, unsigned char *buffer)
{
    unsigned long count = 0;
    return PerformUSBIO(codeOf(request), pipeOf(request), nullptr, 0, buffer, &count);
}

#endif
