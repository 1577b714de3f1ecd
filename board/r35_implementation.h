// The R35: 65 pages of SRAM, and every function of the family.
#ifndef SORVANE_BOARD_R35_IMPLEMENTATION_H
#define SORVANE_BOARD_R35_IMPLEMENTATION_H

#include "board/rbase_implementation.h"

class R35_Implementation final : public RBaseImplementation
{
public:
    R35_Implementation(SorvaneUSB *owner, int deviceHandle, int speed, int deviceNo);

    int PerformUSBIO(unsigned char request, int pipe, unsigned char *outData, unsigned long outLength,
                     unsigned char *inData, unsigned long *inLength) override;
    int GetBoardType(unsigned char *type) override;
    int Download8051Software() override;
    int WriteSRAM(unsigned long address, unsigned char *data, unsigned int length) override;
    int ReadSRAM(unsigned long address, unsigned char *data, unsigned long length) override;
    int ReadClockAtBatteryFailure(unsigned long *time) override;
};

#endif
