#include "sim/board/battery.h"

namespace sim
{

void Battery::fail()
{
    if (!good_)
        return;
    good_ = false;
    failFlag_ = true;
    failedAt_ = now_ ? now_() : 0;
    if (!boardLives())
        lost_();
}

void Battery::replace()
{
    if (!boardLives())
        lost_();
    good_ = true;
}

void Battery::carryBoard(bool alone)
{
    if (!good_)
        lost_();
    alone_ = alone;
}

std::optional<Reply> Battery::answer(Request request, Payload)
{
    switch (request) {
    case Request::ReadAndResetBatteryFailFlag:
        return tell({lowByte(failFlag_ ? 1 : 0)}, [this] { failFlag_ = false; });
    case Request::ReadClockAtBatteryFailure:
        return tell(bytesOf32le(failedAt_));
    default:
        return std::nullopt;
    }
}

}  // namespace sim
