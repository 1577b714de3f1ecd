// The R20: answers in one 64-byte packet, flat SRAM of 64 KiB, and no recorder, SAS, 1-Wire chip or failure flags.
#ifndef SORVANE_BOARD_R20_IMPLEMENTATION_H
#define SORVANE_BOARD_R20_IMPLEMENTATION_H

#include "board/rbase_implementation.h"

class R20Implementation final : public RBaseImplementation
{
public:
    R20Implementation(SorvaneUSB *owner, int deviceHandle, int speed, int deviceNo);

    int PerformUSBIO(unsigned char request, int pipe, unsigned char *outData, unsigned long outLength,
                     unsigned char *inData, unsigned long *inLength) override;
    int GetBoardType(unsigned char *type) override;
    int ConfigurePulsedInput(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState) override;
    int ReleaseParallelHopperCoins(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState,
                                   _usbOutputBitId hopperOutput, unsigned short coinCount,
                                   unsigned char hopperSetting) override;
    int Download8051Software() override;
    int WriteSRAM(unsigned long address, unsigned char *data, unsigned int length) override;
    int ReadSRAM(unsigned long address, unsigned char *data, unsigned long length) override;

    unsigned long LargestAnswer() const override { return usbLargestAnswerR20; }

    // What an R20 lacks: nothing is checked and nothing is sent.
    int ConfigurePulsedInputEx(_usbInputBitId, unsigned char, unsigned char, ActiveState) override { return Lacking(); }
    int ReleaseParallelHopperCoinsEx(_usbInputBitId, unsigned char, unsigned char, ActiveState, _usbOutputBitId,
                                     unsigned short, unsigned char) override
    {
        return Lacking();
    }
    int StopHopperCoinRelease(_usbInputBitId) override { return Lacking(); }
    int ConfigureRecordingInputs(_usbInputBitId *, unsigned long, unsigned short) override { return Lacking(); }
    int StartRecordingInputs(unsigned short) override { return Lacking(); }
    int GetRecordingStatus(RecordingStatus *, unsigned short *, unsigned short *) override { return Lacking(); }
    int ReadDiagnosticData(unsigned char *, unsigned long, unsigned char *, unsigned long *) override
    {
        return Lacking();
    }
    int WriteDiagnosticData(unsigned char *, unsigned long) override { return Lacking(); }
    int GetDallasSerialNumber(unsigned char *, unsigned char *) override { return Lacking(); }
    int ReadAndResetRTCFailure(unsigned char *) override { return Lacking(); }
    int ReadClockAtBatteryFailure(unsigned long *) override { return Lacking(); }
    int ReadAndResetBatteryFailFlag(unsigned char *) override { return Lacking(); }
    int SetSASMachineAddress(_usbSerialPort, unsigned char) override { return Lacking(); }
    int SetSASAutoReply(_usbSerialPort, unsigned int, unsigned char) override { return Lacking(); }
    int SetSASBusy(_usbSerialPort, unsigned int) override { return Lacking(); }
    int GetSASMessageStatus(_usbSerialPort, unsigned int *) override { return Lacking(); }

    // The bounded forms of the base stay visible beside the overrides.
    using RBaseImplementation::GetDallasSerialNumber;
    using RBaseImplementation::ReadDiagnosticData;

private:
    static int Lacking() { return Fail(usbErrorNotSupported); }
};

#endif
