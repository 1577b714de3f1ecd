// The board's random number generator; its numbers are 16 bits, low byte first.
#include "board/exchange.h"

int RBaseImplementation::EnableRandomNumberGenerator(unsigned long setting)
{
    return Tell(Request::EnableRandomNumberGenerator, byteOf(setting, 0), byteOf(setting, 1), byteOf(setting, 2),
                byteOf(setting, 3));
}

int RBaseImplementation::DisableRandomNumberGenerator()
{
    return Tell(Request::DisableRandomNumberGenerator);
}

int RBaseImplementation::GetRandomNumber(unsigned short *number)
{
    if (!number)
        return Fail(usbErrorNullPointer);
    Response<2> response;
    if (!Ask(Request::GetRandomNumber, response))
        return 0;
    *number = response.u16le(0);
    return 1;
}
