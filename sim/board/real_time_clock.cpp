#include "sim/board/real_time_clock.h"

namespace sim
{

RealTimeClock::RealTimeClock(Timeline &timeline, Battery &battery) : timeline_(timeline), since_(timeline.now())
{
    battery.readTimeFrom([this] { return now(); });
}

std::uint32_t RealTimeClock::now() const
{
    return base_ + static_cast<std::uint32_t>((timeline_.now() - since_) / std::chrono::seconds(1));
}

void RealTimeClock::set(std::uint32_t seconds)
{
    base_ = seconds;
    since_ = timeline_.now();
}

void RealTimeClock::fail()
{
    set(0);
    failed_ = true;
}

std::optional<Reply> RealTimeClock::answer(Request request, Payload payload)
{
    switch (request) {
    case Request::SetClock:
        return perform([this, seconds = u32le(payload, 0)] { set(seconds); });
    case Request::GetClock:
        return tell(bytesOf32le(now()));
    case Request::ReadAndResetRTCFailure:
        return tell({lowByte(failed_ ? 1 : 0)}, [this] { failed_ = false; });
    default:
        return std::nullopt;
    }
}

}  // namespace sim
