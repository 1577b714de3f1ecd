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
    int ConfigurePulsedInputEx(_usbInputBitId input, unsigned char inputSetting, unsigned char inputSettingEx,
                               ActiveState activeState) override;
    int ReleaseParallelHopperCoins(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState,
                                   _usbOutputBitId hopperOutput, unsigned short coinCount,
                                   unsigned char hopperSetting) override;
    int ReleaseParallelHopperCoinsEx(_usbInputBitId input, unsigned char inputSetting, unsigned char inputSettingEx,
                                     ActiveState activeState, _usbOutputBitId hopperOutput, unsigned short coinCount,
                                     unsigned char hopperSetting) override;
    int StopHopperCoinRelease(_usbInputBitId input) override;
    int ConfigureRecordingInputs(_usbInputBitId *recordInputs, unsigned long recordAddress,
                                 unsigned short recordLength) override;
    int StartRecordingInputs(unsigned short startValue) override;
    int GetRecordingStatus(RecordingStatus *status, unsigned short *valueA, unsigned short *valueB) override;
    int ReadDiagnosticData(unsigned char *requestData, unsigned long requestLength, unsigned char *reply,
                           unsigned long *replySize) override;
    int WriteDiagnosticData(unsigned char *diagnosticData, unsigned long diagnosticLength) override;
    int Download8051Software() override;
    int WriteSRAM(unsigned long address, unsigned char *data, unsigned int length) override;
    int ReadSRAM(unsigned long address, unsigned char *data, unsigned long length) override;
    int GetDallasSerialNumber(unsigned char *serialNumber, unsigned char *crcValid) override;
    int ReadAndResetRTCFailure(unsigned char *flag) override;
    int ReadClockAtBatteryFailure(unsigned long *time) override;
    int ReadAndResetBatteryFailFlag(unsigned char *flag) override;
    int SetSASMachineAddress(_usbSerialPort port, unsigned char address) override;
    int SetSASAutoReply(_usbSerialPort port, unsigned int reply, unsigned char value) override;
    int SetSASBusy(_usbSerialPort port, unsigned int busy) override;
    int GetSASMessageStatus(_usbSerialPort port, unsigned int *status) override;

    // The bounded forms of the base stay visible beside the overrides.
    using RBaseImplementation::GetDallasSerialNumber;
    using RBaseImplementation::ReadDiagnosticData;
};

#endif
