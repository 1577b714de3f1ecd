#include "board/banked_sram.h"

#include "board/exchange.h"
#include "board/transfer_range.h"

#include <algorithm>

namespace
{

constexpr unsigned long pageBytes = 0x4000;
constexpr unsigned long callerBase = 0x4000;
constexpr unsigned long firmwareOffset = 0x30000;
constexpr unsigned long lastPageBelowFirmware = 12;
constexpr unsigned long firmwarePages = 3;

struct Place {
    unsigned long page;
    unsigned long offset;
    unsigned long leftInPage() const { return pageBytes - offset; }
};

Place placeOf(unsigned long physical, bool aroundFirmware)
{
    Place place = {physical / pageBytes, physical % pageBytes};
    if (aroundFirmware && place.page > lastPageBelowFirmware)
        place.page += firmwarePages;
    return place;
}

int checkRange(unsigned long limit, unsigned long address, const unsigned char *data, unsigned long length)
{
    if (!withinLimit(address, length, limit))
        return RBaseImplementation::Fail(usbErrorParameter);
    if (!data)
        return RBaseImplementation::Fail(usbErrorNullPointer);
    return 1;
}

}  // namespace

int writeBankedSRAM(RBaseImplementation &board, unsigned long limit, unsigned long address, const unsigned char *data,
                    unsigned int length)
{
    if (!checkRange(limit, address, data, length))
        return 0;
    const unsigned long base = address + callerBase + (board.firmwareLoaded ? 0 : firmwareOffset);
    const unsigned long largestChunk = board.isHighSpeed() ? 247 : 55;
    for (unsigned long done = 0; done < length;) {
        const Place place = placeOf(base + done, board.firmwareLoaded != 0);
        const unsigned long n = std::min(std::min(largestChunk, length - done), place.leftInPage());
        Payload<5 + 247> payload(low(n), high(n), place.page, low(place.offset), high(place.offset));
        payload.append(data + done, n);
        if (!board.TellWith(Request::WriteBankedSRAM, payload.bytes, payload.length))
            return 0;
        done += n;
    }
    return 1;
}

int readBankedSRAM(RBaseImplementation &board, unsigned long limit, unsigned long address, unsigned char *data,
                   unsigned long length)
{
    if (!checkRange(limit, address, data, length))
        return 0;
    const unsigned long largestChunk = board.isHighSpeed() ? 252 : 60;
    for (unsigned long done = 0; done < length;) {
        const Place place = placeOf(address + callerBase + done, true);
        const unsigned long n = std::min(std::min(largestChunk, length - done), place.leftInPage());
        Response<0> response;
        if (!board.Ask(Request::ReadBankedSRAM, response, low(n), high(n), place.page, low(place.offset),
                       high(place.offset)))
            return 0;
        if (response.count == 0)
            return RBaseImplementation::Fail(usbErrorTransfer);
        done += response.copyTo(data + done, length - done);
    }
    return 1;
}
