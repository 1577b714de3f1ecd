// The R20s: 33 pages of SRAM; it keeps no record of clock failures.
#ifndef SORVANE_BOARD_R20S_IMPLEMENTATION_H
#define SORVANE_BOARD_R20S_IMPLEMENTATION_H

#include "board/rbase_implementation.h"

class R20s_Implementation final : public RBaseImplementation
{
public:
    R20s_Implementation(SorvaneUSB *owner, int deviceHandle, int speed, int deviceNo);

    int PerformUSBIO(unsigned char request, int pipe, unsigned char *outData, unsigned long outLength,
                     unsigned char *inData, unsigned long *inLength) override;
    int GetBoardType(unsigned char *type) override;
    int Download8051Software() override;
    int WriteSRAM(unsigned long address, unsigned char *data, unsigned int length) override;
    int ReadSRAM(unsigned long address, unsigned char *data, unsigned long length) override;

    // What an R20s lacks: nothing is checked and nothing is sent.
    int ReadAndResetRTCFailure(unsigned char *) override { return Fail(usbErrorNotSupportedR20s); }
    int ReadClockAtBatteryFailure(unsigned long *) override { return Fail(usbErrorNotSupportedR20s); }
};

#endif
