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
    if (!boardHasPower())
        lost_();
}

void Battery::replace()
{
    if (!boardHasPower())
        lost_();
    good_ = true;
}

void Battery::setMainPower(bool on)
{
    if (!good_)
        lost_();
    mainPower_ = on;
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
