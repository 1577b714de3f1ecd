#include "sim/board/sas.h"

namespace sim
{

namespace
{

constexpr std::uint16_t wakeUp = 0x100;
constexpr unsigned char addressMask = 0x7F;
constexpr Nanoseconds linkTime = std::chrono::seconds(5);

}  // namespace

unsigned char SAS::status() const
{
    const bool linked = lastPoll_ && timeline_.now() - *lastPoll_ < linkTime;
    return lowByte((pollWaits_ ? 1U : 0U) | (autoReply_ ? 2U : 0U) | (linked ? 4U : 0U));
}

bool SAS::take(std::uint16_t word)
{
    if (machineAddress_ == 0 || (word & wakeUp) == 0 || (word & addressMask) != machineAddress_)
        return false;
    lastPoll_ = timeline_.now();
    if (autoReply_)
        send_({replyValue_});
    else
        pollWaits_ = true;
    return autoReply_;
}

std::optional<Reply> SAS::answer(Request request, Payload payload)
{
    switch (request) {
    case Request::SetSASMachineAddress:
        if (payload[0] > addressMask)
            return refuse(statusWrongValue);
        return perform([this, address = payload[0]] { machineAddress_ = address; });
    case Request::SetSASAutoReply:
        return perform([this, on = payload[0] != 0, value = payload[1]] {
            autoReply_ = on;
            replyValue_ = value;
        });
    case Request::GetSASMessageStatus:
        return tell({status()});
    default:
        return std::nullopt;
    }
}

void SAS::powerLost()
{
    machineAddress_ = 0;
    autoReply_ = false;
    replyValue_ = 0;
    pollWaits_ = false;
    lastPoll_.reset();
}

}  // namespace sim
