// The board interface: one SorvaneUSB object drives one USB input/output board.
#ifndef SORVANEUSB_H
#define SORVANEUSB_H

#include "sorvaneusb_types.h"

#define SORVANE_API __attribute__((visibility("default")))

class RBaseImplementation;

class SORVANE_API SorvaneUSB
{
public:
    SorvaneUSB();
    ~SorvaneUSB();

    _usbErrorCode GetLastError();
    int ClearErrors();

    int init(int unused);
    int InitUSBBoard(unsigned char boardNumber);

    int GetFittedBoard(unsigned char *type);
    int GetBoardSpeed(unsigned char *speed);
    int Get8051Version(unsigned char *version);
    int Get8051Version(unsigned char *version, unsigned long capacity);
    int GetPICVersion(unsigned char *version);
    int GetPICVersion(unsigned char *version, unsigned long capacity);
    int GetDallasSerialNumber(unsigned char *serialNumber, unsigned char *crcValid);
    int GetDallasSerialNumber(unsigned char *serialNumber, unsigned char *crcValid, unsigned long capacity);
    int GetPICSerialNumber(unsigned char *serialNumber);
    int GetPICSerialNumber(unsigned char *serialNumber, unsigned long capacity);
    int SetPICSerialNumber(unsigned char *serialNumber);
    int Download8051Software();

    int GetInputBit(_usbInputBitId input, unsigned int *state);
    int GetInputs(unsigned char *buffer);
    int SetOutputBit(_usbOutputBitId output, unsigned int state);
    int SetOutputs(unsigned char *outputs);
    int GetInputs(usbInput *inputs);
    int InputMultiplexing(usbInputMultiplexing mode);
    int GetMultiplexedInputs(usbMultiplexedInput *inputs);
    int GetChangedInputs(usbInput *inputs);
    int GetRawInputs(usbInput *inputs);
    int ModifyOutputs(usbOutput *outputsOff, usbOutput *outputsOn);

    int SetOnPeriodOutputs(usbOutput outputs);
    int SetOffPeriodOutputs(usbOutput outputs);
    int SetOnPeriodOutputBit(_usbOutputId outputByte, int bit, unsigned int state);
    int SetOffPeriodOutputBit(_usbOutputId outputByte, int bit, unsigned int state);
    int SetOutputBrightness(unsigned char level);

    int PulseOutput(unsigned char output, unsigned char pulseValue);
    int PulseOffOutput(unsigned char output, unsigned char pulseValue);
    int PulseOutputResult(unsigned char *resultA, unsigned int *resultB, unsigned int *resultC);

    int ConfigurePulsedInput(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState);
    int ConfigurePulsedInputEx(_usbInputBitId input, unsigned char inputSetting, unsigned char inputSettingEx,
                               ActiveState activeState);
    int BeginPulsedInputCheck(_usbInputBitId input);
    int EndPulsedInputCheck(_usbInputBitId input);
    int ResetPulsedInputCounter(_usbInputBitId input);
    int DecrementPulsedInputCounter(_usbInputBitId input);
    int ReadPulsedInputCounter(_usbInputBitId input, unsigned char *counter);
    int GetPulsedInputStatus(_usbInputBitId input, unsigned int *active, unsigned char *hopperByte);

    int ReleaseParallelHopperCoins(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState,
                                   _usbOutputBitId hopperOutput, unsigned short coinCount, unsigned char hopperSetting);
    int ReleaseParallelHopperCoinsEx(_usbInputBitId input, unsigned char inputSetting, unsigned char inputSettingEx,
                                     ActiveState activeState, _usbOutputBitId hopperOutput, unsigned short coinCount,
                                     unsigned char hopperSetting);
    int GetParallelHopperStatus(_usbInputBitId input, ReleaseHopperCoinsStatus *status, unsigned char *hopperByte);
    int StopHopperCoinRelease(_usbInputBitId input);

    int ConfigureReels(unsigned char reels, unsigned char reelSetting, unsigned char reelOption);
    int ConfigureReelsEx(unsigned char reels, unsigned short reelSetting, unsigned char reelOption);
    int SpinReels(unsigned char reel, unsigned char spinMode, unsigned short steps);
    int SpinRampUp(unsigned char reel, usbRampTable table);
    int SpinRampDown(unsigned char reel, usbRampTable table);
    int SetDutyCycle(unsigned char dutyA, unsigned char dutyB, unsigned char dutyC);
    int GetReelStatus(usbReelStatus *status);
    int GetReelStatusEx(ReelStatusEx *status);
    int ReelSynchroniseEnable(unsigned char enable);

    int ConfigureRecordingInputs(_usbInputBitId *recordInputs, unsigned long recordAddress,
                                 unsigned short recordLength);
    int StartRecordingInputs(unsigned short startValue);
    int GetRecordingStatus(RecordingStatus *status, unsigned short *valueA, unsigned short *valueB);
    int ReadDiagnosticData(unsigned char *requestData, unsigned long requestLength, unsigned char *reply,
                           unsigned long *replySize);
    int ReadDiagnosticData(unsigned char *requestData, unsigned long requestLength, unsigned char *reply,
                           unsigned long *replySize, unsigned long capacity);
    int WriteDiagnosticData(unsigned char *diagnosticData, unsigned long diagnosticLength);

    int SetConfig(_usbSerialPort port, _DCB *settings, _usbPortType type);
    int Send(_usbSerialPort port, unsigned char *data, unsigned int length);
    int Receive(_usbSerialPort port, unsigned char *data, unsigned long *length);
    int Receive(_usbSerialPort port, unsigned char *data, unsigned long *length, unsigned long capacity);
    int ReceiveByteWithTimestamp(_usbSerialPort port, unsigned char *data, unsigned char *timestamp,
                                 unsigned int *received);
    int Send9BitData(_usbSerialPort port, unsigned short *data, unsigned int count);
    int Receive9BitData(_usbSerialPort port, unsigned short *data, unsigned long *count);
    int Receive9BitData(_usbSerialPort port, unsigned short *data, unsigned long *count, unsigned long capacity);
    int ReceiveByteWithTimestamp9BitData(_usbSerialPort port, unsigned short *data, unsigned char *timestamp,
                                         unsigned int *received);
    int SetTimeoutMessage(_usbSerialPort port, unsigned char *message, unsigned char length, float seconds);
    int GetParityErrors(_usbSerialPort port, unsigned short *count);

    int SetSASMachineAddress(_usbSerialPort port, unsigned char address);
    int SetSASAutoReply(_usbSerialPort port, unsigned int reply, unsigned char value);
    int SetSASBusy(_usbSerialPort port, unsigned int busy);
    int GetSASMessageStatus(_usbSerialPort port, unsigned int *status);

    int ConfigureCCTalkPort(_usbSerialPort port, CCTalkConfig *config);
    int ConfigureRS232Poll(_usbSerialPort port, RS232PollConfig *config);
    int SetPolledHostTimeout(_usbSerialPort port, unsigned char slot, double seconds);
    int EmptyPolledBuffer(_usbSerialPort port, unsigned char slot);
    int ReceivePolledMessage(_usbSerialPort port, unsigned char slot, unsigned char *message, unsigned long *length,
                             unsigned int *status);
    int ReceivePolledMessage(_usbSerialPort port, unsigned char slot, unsigned char *message, unsigned long *length,
                             unsigned int *status, unsigned long capacity);
    int DeletePolledMessage(_usbSerialPort port, unsigned char slot);

    int EnableSPI();
    int DisableSPI();
    int SendSPI(unsigned char sendBits, unsigned char *txData, unsigned char spiOption, unsigned char receiveBits,
                unsigned char *rxData);
    int SendSPI(unsigned char sendBits, unsigned char *txData, unsigned char spiOption, unsigned char receiveBits,
                unsigned char *rxData, unsigned long capacity);
    int SendSEC(unsigned char headerA, unsigned char headerB, unsigned char dataLength, unsigned char *data,
                unsigned char spiOption, unsigned char replyLength, unsigned char *rxData);
    int SendSEC(unsigned char headerA, unsigned char headerB, unsigned char dataLength, unsigned char *data,
                unsigned char spiOption, unsigned char replyLength, unsigned char *rxData, unsigned long capacity);

    int ConfigureEEPROM(R20EEPROM *eeprom);
    int ConfigureEEPROM(const R20EEPROM *eeprom);
    int CheckEEPROM(R20EEPROM *eeprom);
    int ReadEEPROM(unsigned short address, unsigned char *data, unsigned int length);
    int WriteEEPROM(unsigned short address, unsigned char *data, unsigned int length);

    int ReadSRAM(unsigned short address, unsigned char *data, unsigned int length);
    int WriteSRAM(unsigned short address, unsigned char *data, unsigned int length);
    int ReadLargeSRAM(unsigned long address, unsigned char *data, unsigned long length);
    int WriteLargeSRAM(unsigned long address, unsigned char *data, unsigned long length);

    int SetClock(unsigned long time);
    int GetClock(unsigned long *time);
    int NextSecuritySwitchRead(unsigned long *time, unsigned char *switches);
    int StartSecuritySwitchRead();
    int ClearSecuritySwitches();
    int ReadAndResetSecuritySwitchFlags(unsigned char *flagsA, unsigned char *flagsB);
    int ReadAndResetBatteryFailFlag(unsigned char *flag);
    int CachedReadAndResetSecuritySwitchFlags(unsigned char *flagsA, unsigned char *flagsB);

    int EnableRandomNumberGenerator(unsigned long setting);
    int DisableRandomNumberGenerator();
    int GetRandomNumber(unsigned short *number);

    int ReadAndResetRTCFailure(unsigned char *flag);
    int ReadClockAtBatteryFailure(unsigned long *time);

    SorvaneUSB(SorvaneUSB &other);
    SorvaneUSB(const SorvaneUSB &other);
    SorvaneUSB &operator=(SorvaneUSB &other);
    SorvaneUSB &operator=(const SorvaneUSB &other);

    int InitPort(int deviceNo);
    int close();

    int PerformUSBIO(unsigned char request, int pipe, unsigned char *outData, unsigned long outLength,
                     unsigned char *inData, unsigned long *inLength);

    int GetProductVersion(unsigned char *version);
    int GetDllVersion(unsigned char *version);

private:
    RBaseImplementation *implementation;
};

SORVANE_API int GetBoardType(int deviceNo);
SORVANE_API int LocalGetBoardSpeed(int deviceNo);
SORVANE_API const char *usbErrorText(int code);

#endif
