#include "acceptor.h"

#include "wiring.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <numeric>

namespace fruit_machine
{

namespace
{

constexpr unsigned char pollSlot = 0;
constexpr unsigned char hostAddress = 1;
constexpr unsigned char modifyInhibitStatus = 231;  // ccTalk header: a bit for each coin that may be taken
constexpr unsigned char readBufferedCredit = 229;   // the number of the last event, then the last five, newest first
constexpr unsigned int eventsTold = 5;
constexpr unsigned long creditFrameLength = 4 + 1 + 2 * eventsTold + 1;

/// Destination, number of data bytes, source, header, data, checksum: the sum of all bytes is 0.
void fillFrame(unsigned char *frame, unsigned char header, std::initializer_list<unsigned char> data)
{
    const auto length = static_cast<unsigned char>(data.size());
    const unsigned char head[] = {acceptorAddress, length, hostAddress, header};
    std::memcpy(frame, head, sizeof head);
    std::copy(data.begin(), data.end(), frame + sizeof head);
    unsigned char *end = frame + sizeof head + length;
    *end = static_cast<unsigned char>(-std::accumulate(frame, end, 0));
}

bool isCredit(const unsigned char *frame, unsigned long length)
{
    return length == creditFrameLength && frame[0] == hostAddress && frame[3] == 0 &&
           std::accumulate(frame, frame + length, 0) % 256 == 0;
}

/// How many events are new. The number runs from 1 to 255 and begins again at 1; 0 is an acceptor that was reset. More
/// new events than it tells can only be another acceptor, or one that was reset: of that, those since the reset count.
unsigned int freshEvents(unsigned char event, unsigned char seen)
{
    const unsigned int fresh = event >= seen ? event - seen : event + 255U - seen;
    if (event == 0)
        return 0;
    if (fresh <= eventsTold)
        return fresh;
    return event <= eventsTold ? event : 0;
}

}  // namespace

void Acceptor::begin()
{
    _DCB line = {};
    line.BaudRate = 9600;
    CCTalkConfig config = {};
    config.slot = pollSlot;
    config.timeMs = 50;
    constexpr unsigned int tokensOnly = 1U << (tokenType - 1);
    fillFrame(config.message1, modifyInhibitStatus, {tokensOnly & 0xFF, tokensOnly >> 8});
    fillFrame(config.message2, readBufferedCredit, {});
    must(board_.SetConfig(acceptorPort, &line, usbPortType1), board_, "SetConfig");
    must(board_.ConfigureCCTalkPort(acceptorPort, &config), board_, "ConfigureCCTalkPort");
    must(board_.SetPolledHostTimeout(acceptorPort, pollSlot, 0.5), board_, "SetPolledHostTimeout");
}

unsigned int Acceptor::tokensSince(unsigned char &seen)
{
    unsigned int tokens = 0;
    for (;;) {
        unsigned char answer[2 * usbLargestAnswer];
        unsigned long length = 0;
        unsigned int status = 0;
        must(board_.ReceivePolledMessage(acceptorPort, pollSlot, answer, &length, &status, sizeof answer), board_,
             "ReceivePolledMessage");
        if (length == 0)
            return tokens;
        if (!isCredit(answer, length))
            continue;
        const unsigned char event = answer[4];
        for (unsigned int k = 0; k < freshEvents(event, seen); ++k)
            tokens += answer[5 + 2 * k] == tokenType ? 1 : 0;
        seen = event;
    }
}

}  // namespace fruit_machine
