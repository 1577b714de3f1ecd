#include "board/rbase_implementation.h"

#include <unistd.h>

RBaseImplementation::RBaseImplementation(SorvaneUSB *owner, int deviceHandle, int speed, int deviceNo)
    : firmwareLoaded(0), speed(speed), owner(owner), deviceNo(deviceNo), referenceCount(1), deviceHandle(deviceHandle)
{
}

RBaseImplementation::~RBaseImplementation()
{
    if (deviceHandle > 0)
        ::close(deviceHandle);
}

void RBaseImplementation::incrementReferenceCount()
{
    ++referenceCount;
}

void RBaseImplementation::decrementReferenceCount()
{
    if (--referenceCount <= 0)
        delete this;
}

int RBaseImplementation::GetBoardType(unsigned char *type)
{
    if (!type)
        return Fail(usbErrorNullPointer);
    *type = 0;
    return 0;
}

int RBaseImplementation::GetBoardSpeed(unsigned char *result)
{
    if (!result)
        return Fail(usbErrorNullPointer);
    *result = static_cast<unsigned char>(speed);
    return 1;
}

// What every model has in its own way: a board without a model has none of it and says so without a code.

int RBaseImplementation::PerformUSBIO(unsigned char, int, unsigned char *, unsigned long, unsigned char *,
                                      unsigned long *)
{
    return 0;
}

int RBaseImplementation::Download8051Software()
{
    return 0;
}

int RBaseImplementation::WriteSRAM(unsigned long, unsigned char *, unsigned int)
{
    return 0;
}

int RBaseImplementation::ReadSRAM(unsigned long, unsigned char *, unsigned long)
{
    return 0;
}

int RBaseImplementation::ReadClockAtBatteryFailure(unsigned long *)
{
    return 0;
}

unsigned long RBaseImplementation::LargestAnswer() const
{
    return usbLargestAnswer;
}

int RBaseImplementation::ReportType(unsigned char *result, BoardType type)
{
    if (!result)
        return Fail(usbErrorNullPointer);
    *result = type;
    return 1;
}
