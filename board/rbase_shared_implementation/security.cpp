// Security switches, battery and clock. The clock is a 32-bit number, low byte first on the wire.
#include "board/exchange.h"

int RBaseImplementation::ReadClockValue(Request request, unsigned long *time)
{
    if (!time)
        return Fail(usbErrorNullPointer);
    Response<4> response;
    if (!Ask(request, response))
        return 0;
    *time = response.u32le(0);
    return 1;
}

int RBaseImplementation::ReadFlag(Request request, unsigned char *flag)
{
    if (!flag)
        return Fail(usbErrorNullPointer);
    Response<1> response;
    if (!Ask(request, response))
        return 0;
    *flag = response.u8(0);
    return 1;
}

int RBaseImplementation::ReadSwitchFlags(Request request, unsigned char *flagsA, unsigned char *flagsB)
{
    if (!flagsA || !flagsB)
        return Fail(usbErrorNullPointer);
    Response<2> response;
    if (!Ask(request, response))
        return 0;
    *flagsA = response.u8(0);
    *flagsB = response.u8(1);
    return 1;
}

int RBaseImplementation::SetClock(unsigned long time)
{
    return Tell(Request::SetClock, byteOf(time, 0), byteOf(time, 1), byteOf(time, 2), byteOf(time, 3));
}

int RBaseImplementation::GetClock(unsigned long *time)
{
    return ReadClockValue(Request::GetClock, time);
}

int RBaseImplementation::StartSecuritySwitchRead()
{
    return Tell(Request::StartSecuritySwitchRead);
}

int RBaseImplementation::NextSecuritySwitchRead(unsigned long *time, unsigned char *switches)
{
    if (!time || !switches)
        return Fail(usbErrorNullPointer);
    Response<5> response;
    if (!Ask(Request::NextSecuritySwitchRead, response))
        return 0;
    *time = response.u32le(0);
    *switches = response.u8(4);
    return 1;
}

int RBaseImplementation::ClearSecuritySwitches()
{
    return Tell(Request::ClearSecuritySwitches);
}

int RBaseImplementation::ReadAndResetSecuritySwitchFlags(unsigned char *flagsA, unsigned char *flagsB)
{
    return ReadSwitchFlags(Request::ReadAndResetSecuritySwitchFlags, flagsA, flagsB);
}

int RBaseImplementation::CachedReadAndResetSecuritySwitchFlags(unsigned char *flagsA, unsigned char *flagsB)
{
    return ReadSwitchFlags(Request::CachedReadAndResetSecuritySwitchFlags, flagsA, flagsB);
}

int RBaseImplementation::ReadAndResetBatteryFailFlag(unsigned char *flag)
{
    return ReadFlag(Request::ReadAndResetBatteryFailFlag, flag);
}

int RBaseImplementation::ReadAndResetRTCFailure(unsigned char *flag)
{
    return ReadFlag(Request::ReadAndResetRTCFailure, flag);
}
