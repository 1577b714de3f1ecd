// Motor-driven reels. The status comes reel by reel, six bytes each; the records group by field.
#include "board/exchange.h"

namespace
{

constexpr int reelCount = 3;
constexpr int statusBytesPerReel = 6;

/// 0, 1, 2 and, read as signed bytes, -1 and -2.
bool isSpinMode(unsigned char mode)
{
    return mode <= 2 || mode >= 254;
}

}  // namespace

int RBaseImplementation::ConfigureReelsEx(unsigned char reels, unsigned short reelSetting, unsigned char reelOption)
{
    if (reels > reelCount)
        return Fail(usbErrorParameter);
    return Tell(Request::ConfigureReels, reels, high(reelSetting), low(reelSetting), reelOption);
}

int RBaseImplementation::SpinReels(unsigned char reel, unsigned char spinMode, unsigned short steps)
{
    if (!isSpinMode(spinMode))
        return Fail(usbErrorParameter);
    return Tell(Request::SpinReels, reel, spinMode, high(steps), low(steps));
}

int RBaseImplementation::SpinRamp(Request request, unsigned char reel, const usbRampTable &table)
{
    if (reel >= reelCount)
        return Fail(usbErrorRampReel);
    if (table.entryCount > sizeof table.entries)
        return Fail(usbErrorParameter);
    Payload<2 + sizeof table.entries> payload(reel, table.entryCount);
    payload.append(table.entries, table.entryCount);
    return TellWith(request, payload.bytes, payload.length);
}

int RBaseImplementation::SpinRampUp(unsigned char reel, usbRampTable table)
{
    return SpinRamp(Request::SpinRampUp, reel, table);
}

int RBaseImplementation::SpinRampDown(unsigned char reel, usbRampTable table)
{
    return SpinRamp(Request::SpinRampDown, reel, table);
}

int RBaseImplementation::SetDutyCycle(unsigned char dutyA, unsigned char dutyB, unsigned char dutyC)
{
    return Tell(Request::SetDutyCycle, dutyA, dutyB, dutyC);
}

int RBaseImplementation::ReelSynchroniseEnable(unsigned char enable)
{
    return Tell(Request::ReelSynchroniseEnable, enable);
}

int RBaseImplementation::GetReelStatusEx(ReelStatusEx *status)
{
    if (!status)
        return Fail(usbErrorNullPointer);
    Response<reelCount * statusBytesPerReel> response;
    if (!Ask(Request::GetReelStatus, response))
        return 0;
    for (int reel = 0; reel < reelCount; ++reel) {
        const unsigned int place = static_cast<unsigned int>(reel * statusBytesPerReel);
        status->first[reel] = response.u16be(place);
        status->second[reel] = response.u16be(place + 2);
        status->third[reel] = response.u8(place + 4);
        status->fourth[reel] = response.u8(place + 5);
    }
    return 1;
}

int RBaseImplementation::GetReelStatus(usbReelStatus *status)
{
    if (!status)
        return Fail(usbErrorNullPointer);
    ReelStatusEx wide;
    const int result = GetReelStatusEx(&wide);
    if (!result)
        return result;
    for (int reel = 0; reel < reelCount; ++reel) {
        status->first[reel] = low(wide.first[reel]);
        status->second[reel] = low(wide.second[reel]);
        status->third[reel] = wide.third[reel];
        status->fourth[reel] = wide.fourth[reel];
    }
    return result;
}
