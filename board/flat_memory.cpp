#include "board/flat_memory.h"

#include "board/exchange.h"

#include <algorithm>

int readFlatMemory(RBaseImplementation &board, Request request, unsigned long address, unsigned char *data,
                   unsigned long length)
{
    for (unsigned long done = 0; done < length;) {
        const unsigned long n = std::min(58UL, length - done);
        const unsigned long place = address + done;
        Response<0> response;
        if (!board.Ask(request, response, n, low(place), high(place)))
            return 0;
        if (response.count == 0)
            return RBaseImplementation::Fail(usbErrorTransfer);
        done += response.copyTo(data + done, length - done);
    }
    return 1;
}

int writeFlatMemory(RBaseImplementation &board, Request request, unsigned long largestChunk, unsigned long address,
                    const unsigned char *data, unsigned long length)
{
    for (unsigned long done = 0; done < length;) {
        const unsigned long n = std::min(largestChunk, length - done);
        const unsigned long place = address + done;
        Payload<3 + 249> payload(n, low(place), high(place));
        payload.append(data + done, n);
        if (!board.TellWith(request, payload.bytes, payload.length))
            return 0;
        done += n;
    }
    return 1;
}
