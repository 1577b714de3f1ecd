#include "board/r35_implementation.h"

#include "board/record_transport.h"

R35_Implementation::R35_Implementation(SorvaneUSB *owner, int deviceHandle, int speed, int deviceNo)
    : RBaseImplementation(owner, deviceHandle, speed, deviceNo)
{
}

int R35_Implementation::PerformUSBIO(unsigned char request, int pipe, unsigned char *outData, unsigned long outLength,
                                     unsigned char *inData, unsigned long *inLength)
{
    return exchangeByRecord(GetDeviceHandle(0), request, pipe, outData, outLength, inData, inLength);
}
