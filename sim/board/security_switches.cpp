#include "sim/board/security_switches.h"

#include <stdexcept>

namespace sim
{

bool SecuritySwitches::isOpen(unsigned int number) const
{
    return (levels_ >> number & 1) != 0;
}

void SecuritySwitches::change(unsigned int number, bool opened)
{
    if (number >= switchCount)
        throw std::out_of_range("security switch");
    if (isOpen(number) == opened)
        return;
    const auto bit = static_cast<unsigned char>(1U << number);
    levels_ ^= bit;
    if (!battery_.boardHasPower())
        return;
    for (Flags *flags : {&flags_, &cachedFlags_})
        (opened ? flags->opened : flags->closed) |= bit;
    log_.push_back({clock_.now(), levels_});
    if (log_.size() > switchLogCapacity) {
        log_.pop_front();
        readIndex_ -= readIndex_ > 0 ? 1 : 0;
    }
}

Reply SecuritySwitches::nextEvent()
{
    if (readIndex_ >= log_.size())
        return refuse(statusNothingMore);
    const Event &event = log_[readIndex_];
    Bytes bytes = bytesOf32le(event.time);
    bytes.push_back(event.switches);
    return tell(bytes, [this] { ++readIndex_; });
}

Reply SecuritySwitches::readAndReset(Flags &flags)
{
    return tell({flags.opened, flags.closed}, [&flags] { flags = {}; });
}

std::optional<Reply> SecuritySwitches::answer(Request request, Payload)
{
    switch (request) {
    case Request::StartSecuritySwitchRead:
        return perform([this] { readIndex_ = 0; });
    case Request::NextSecuritySwitchRead:
        return nextEvent();
    case Request::ClearSecuritySwitches:
        return perform([this] {
            log_.clear();
            readIndex_ = 0;
        });
    case Request::ReadAndResetSecuritySwitchFlags:
        return readAndReset(flags_);
    case Request::CachedReadAndResetSecuritySwitchFlags:
        return readAndReset(cachedFlags_);
    default:
        return std::nullopt;
    }
}

void SecuritySwitches::backupLost()
{
    log_.clear();
    flags_ = {};
    cachedFlags_ = {};
}

}  // namespace sim
