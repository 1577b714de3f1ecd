// The board as a polling host: it sends a slot's messages to a peripheral by itself and keeps the answers until they
// are fetched. A ccTalk slot is an RS232 slot whose framing is that of a ccTalk frame: its length byte is byte 1, and
// five bytes are not counted by it.
#include "board/exchange.h"
#include "board/rbase_shared_implementation/exact_seconds.h"
#include "board/rbase_shared_implementation/serial_port.h"

#include <algorithm>

namespace
{

static_assert(sizeof(CCTalkConfig) == 72 && sizeof(RS232PollConfig) == 76);  // in both widths

constexpr unsigned char lastSlot = 3;
constexpr unsigned int lastOptionA = 3;
constexpr unsigned char lastOptionB = 4;
constexpr int longestTimeMs = 2550;
constexpr unsigned char longestMessage = sizeof CCTalkConfig().message1;
constexpr unsigned long slotHeader = 13;
constexpr double longestHostTimeout = 25.5;
constexpr unsigned long messageHeader = 2;
/// Parts in a row without a byte, about half a minute of a real board: one that goes on saying "more follows" without
/// ever sending any would hold its caller for ever.
constexpr unsigned int mostEmptyParts = 32768;

struct Framing {
    unsigned char framing;
    unsigned char lengthIndex;
    unsigned char lengthExtra;

    /// Computed in 8 bits, as on the board: a sum that passes 255 wraps.
    unsigned char lengthOf(const unsigned char *message) const
    {
        return static_cast<unsigned char>(lengthExtra + message[lengthIndex]);
    }
};

constexpr Framing ccTalkFraming = {1, 1, 5};

template <class Config>
int configureSlot(RBaseImplementation &board, _usbSerialPort port, Config &config, const Framing &framing)
{
    const unsigned char length1 = framing.lengthOf(config.message1);
    const unsigned char length2 = framing.lengthOf(config.message2);
    if (length1 > longestMessage || length2 > longestMessage || config.slot > lastSlot ||
        config.optionB > lastOptionB || config.optionA > lastOptionA)
        return RBaseImplementation::Fail(usbErrorParameter);
    if (config.timeMs > longestTimeMs)
        config.timeMs = longestTimeMs;
    Payload<slotHeader + 2 * longestMessage> payload(
        config.slot, config.optionA, config.optionB, framing.framing, framing.lengthIndex, framing.lengthExtra,
        config.timeMs / 10, config.optionE, config.optionD, config.optionF, config.optionC, length1, length2);
    payload.append(config.message1, length1).append(config.message2, length2);
    if (!isSerialPort(port))
        return RBaseImplementation::Fail(usbErrorParameter);
    return board.TellWith(onPort(Request::ConfigurePollSlot, port), payload.bytes, payload.length);
}

}  // namespace

int RBaseImplementation::ConfigureCCTalkPort(_usbSerialPort port, CCTalkConfig *config)
{
    if (!config)
        return Fail(usbErrorNullPointer);
    return configureSlot(*this, port, *config, ccTalkFraming);
}

int RBaseImplementation::ConfigureRS232Poll(_usbSerialPort port, RS232PollConfig *config)
{
    if (!config)
        return Fail(usbErrorNullPointer);
    if (config->lengthIndex >= longestMessage)
        return Fail(usbErrorParameter);
    return configureSlot(*this, port, *config, {config->framing, config->lengthIndex, config->lengthExtra});
}

int RBaseImplementation::SetPolledHostTimeout(_usbSerialPort port, unsigned char slot, double seconds)
{
    if (!(seconds >= 0 && seconds <= longestHostTimeout) || slot > lastSlot)  // also refuses what is not a number
        return Fail(usbErrorParameter);
    const unsigned char tenths = tenthsOf(seconds);
    if (!isSerialPort(port))
        return Fail(usbErrorParameter);
    return Tell(onPort(Request::SetPolledHostTimeout, port), slot, tenths);
}

int RBaseImplementation::EmptyPolledBuffer(_usbSerialPort port, unsigned char slot)
{
    if (slot > lastSlot || !isSerialPort(port))
        return Fail(usbErrorParameter);
    return Tell(onPort(Request::EmptyPolledBuffer, port), slot);
}

int RBaseImplementation::DeletePolledMessage(_usbSerialPort port, unsigned char slot)
{
    if (slot > lastSlot || !isSerialPort(port))
        return Fail(usbErrorParameter);
    return Tell(onPort(Request::DeletePolledMessage, port), slot);
}

int RBaseImplementation::ReceivePolledParts(_usbSerialPort port, unsigned char slot, unsigned char *message,
                                            unsigned long *length, unsigned int *status, unsigned long capacity,
                                            unsigned long largestPart)
{
    *length = 0;
    unsigned int emptyParts = 0;
    while (capacity - *length >= largestPart) {
        if (!isSerialPort(port))
            return Fail(usbErrorParameter);
        Response<messageHeader> response;
        if (!Ask(onPort(Request::ReceivePolledMessage, port), response, slot))
            return 0;
        *status = response.u8(0);
        if (response.count > messageHeader) {
            std::memcpy(message + *length, response.bytes + messageHeader, response.count - messageHeader);
            *length += response.count - messageHeader;
            emptyParts = 0;
        } else {
            ++emptyParts;
        }
        const bool more = response.u8(1) != 0;
        if (!more)
            break;
        if (emptyParts == mostEmptyParts)
            return Fail(usbErrorTransfer);
    }
    return 1;
}

int RBaseImplementation::ReceivePolledMessage(_usbSerialPort port, unsigned char slot, unsigned char *message,
                                              unsigned long *length, unsigned int *status)
{
    if (!message || !length || !status)
        return Fail(usbErrorNullPointer);
    if (slot > lastSlot)
        return Fail(usbErrorParameter);
    const unsigned long unbounded = ~0UL;
    return ReceivePolledParts(port, slot, message, length, status, unbounded, 0);
}

int RBaseImplementation::ReceivePolledMessage(_usbSerialPort port, unsigned char slot, unsigned char *message,
                                              unsigned long *length, unsigned int *status, unsigned long capacity)
{
    if (!message || !length || !status)
        return Fail(usbErrorNullPointer);
    if (slot > lastSlot)
        return Fail(usbErrorParameter);
    const unsigned long largestPart = LargestAnswer() - messageHeader;
    if (capacity < largestPart)
        return Fail(usbErrorLength);
    return ReceivePolledParts(port, slot, message, length, status, capacity, largestPart);
}
