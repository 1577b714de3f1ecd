#include "board/r20s_implementation.h"

#include "board/record_transport.h"

R20s_Implementation::R20s_Implementation(SorvaneUSB *owner, int deviceHandle, int speed, int deviceNo)
    : RBaseImplementation(owner, deviceHandle, speed, deviceNo)
{
}

int R20s_Implementation::PerformUSBIO(unsigned char request, int pipe, unsigned char *outData, unsigned long outLength,
                                      unsigned char *inData, unsigned long *inLength)
{
    return exchangeByRecord(GetDeviceHandle(0), request, pipe, outData, outLength, inData, inLength);
}
