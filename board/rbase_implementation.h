// The object behind an open board: its state, the reference count by which several SorvaneUSB objects share it, and
// every operation that the models have in common. A model derives from it alone and overrides what differs. What each
// operation sends and refuses is told in api/sorvaneusb.h.
#ifndef SORVANE_BOARD_RBASE_IMPLEMENTATION_H
#define SORVANE_BOARD_RBASE_IMPLEMENTATION_H

#include "api/sorvaneusb_types.h"
#include "board/models.h"
#include "board/requests.h"

class SorvaneUSB;
template <unsigned long Decoded>
class Response;
struct TimestampedItem;

class RBaseImplementation
{
public:
    RBaseImplementation(SorvaneUSB *owner, int deviceHandle, int speed, int deviceNo);
    RBaseImplementation(const RBaseImplementation &) = delete;
    RBaseImplementation &operator=(const RBaseImplementation &) = delete;

    // The virtual operations stand in the order of their slots.
    virtual ~RBaseImplementation();
    virtual void incrementReferenceCount();
    virtual void decrementReferenceCount();
    virtual int PerformUSBIO(unsigned char request, int pipe, unsigned char *outData, unsigned long outLength,
                             unsigned char *inData, unsigned long *inLength);
    virtual int GetBoardType(unsigned char *type);
    virtual int GetBoardSpeed(unsigned char *speed);
    virtual int ConfigurePulsedInput(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState);
    virtual int ConfigurePulsedInputEx(_usbInputBitId input, unsigned char inputSetting, unsigned char inputSettingEx,
                                       ActiveState activeState);
    virtual int ReleaseParallelHopperCoins(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState,
                                           _usbOutputBitId hopperOutput, unsigned short coinCount,
                                           unsigned char hopperSetting);
    virtual int ReleaseParallelHopperCoinsEx(_usbInputBitId input, unsigned char inputSetting,
                                             unsigned char inputSettingEx, ActiveState activeState,
                                             _usbOutputBitId hopperOutput, unsigned short coinCount,
                                             unsigned char hopperSetting);
    virtual int StopHopperCoinRelease(_usbInputBitId input);
    virtual int GetInputBit(_usbInputBitId input, unsigned int *state);
    virtual int GetInputs(unsigned char *buffer);
    virtual int SetOutputBit(_usbOutputBitId output, unsigned int state);
    virtual int SetOutputs(unsigned char *outputs);
    virtual int GetInputs(usbInput *inputs);
    virtual int InputMultiplexing(usbInputMultiplexing mode);
    virtual int GetMultiplexedInputs(usbMultiplexedInput *inputs);
    virtual int GetChangedInputs(usbInput *inputs);
    virtual int GetRawInputs(usbInput *inputs);
    virtual int ModifyOutputs(usbOutput *outputsOff, usbOutput *outputsOn);
    virtual int SetOnPeriodOutputs(usbOutput outputs);
    virtual int SetOffPeriodOutputs(usbOutput outputs);
    virtual int SetOnPeriodOutputBit(_usbOutputId outputByte, int bit, unsigned int state);
    virtual int SetOffPeriodOutputBit(_usbOutputId outputByte, int bit, unsigned int state);
    virtual int SetOutputBrightness(unsigned char level);
    virtual int PulseOutput(unsigned char output, unsigned char pulseValue);
    virtual int PulseOffOutput(unsigned char output, unsigned char pulseValue);
    virtual int PulseOutputResult(unsigned char *resultA, unsigned int *resultB, unsigned int *resultC);
    virtual int BeginPulsedInputCheck(_usbInputBitId input);
    virtual int EndPulsedInputCheck(_usbInputBitId input);
    virtual int ResetPulsedInputCounter(_usbInputBitId input);
    virtual int DecrementPulsedInputCounter(_usbInputBitId input);
    virtual int ReadPulsedInputCounter(_usbInputBitId input, unsigned char *counter);
    virtual int GetPulsedInputStatus(_usbInputBitId input, unsigned int *active, unsigned char *hopperByte);
    virtual int GetParallelHopperStatus(_usbInputBitId input, ReleaseHopperCoinsStatus *status,
                                        unsigned char *hopperByte);
    virtual int ConfigureReelsEx(unsigned char reels, unsigned short reelSetting, unsigned char reelOption);
    virtual int SpinReels(unsigned char reel, unsigned char spinMode, unsigned short steps);
    virtual int SpinRampUp(unsigned char reel, usbRampTable table);
    virtual int SpinRampDown(unsigned char reel, usbRampTable table);
    virtual int SetDutyCycle(unsigned char dutyA, unsigned char dutyB, unsigned char dutyC);
    virtual int GetReelStatus(usbReelStatus *status);
    virtual int GetReelStatusEx(ReelStatusEx *status);
    virtual int ReelSynchroniseEnable(unsigned char enable);
    virtual int ConfigureRecordingInputs(_usbInputBitId *recordInputs, unsigned long recordAddress,
                                         unsigned short recordLength);
    virtual int StartRecordingInputs(unsigned short startValue);
    virtual int GetRecordingStatus(RecordingStatus *status, unsigned short *valueA, unsigned short *valueB);
    virtual int ReadDiagnosticData(unsigned char *requestData, unsigned long requestLength, unsigned char *reply,
                                   unsigned long *replySize);
    virtual int WriteDiagnosticData(unsigned char *diagnosticData, unsigned long diagnosticLength);
    virtual int Download8051Software();
    virtual int WriteSRAM(unsigned long address, unsigned char *data, unsigned int length);
    virtual int ReadSRAM(unsigned long address, unsigned char *data, unsigned long length);
    virtual int ConfigureEEPROM(R20EEPROM *eeprom);
    virtual int CheckEEPROM(R20EEPROM *eeprom);
    virtual int ReadEEPROM(unsigned short address, unsigned char *data, unsigned int length);
    virtual int WriteEEPROM(unsigned short address, unsigned char *data, unsigned int length);
    virtual int GetPICVersion(unsigned char *version);
    virtual int GetPICSerialNumber(unsigned char *serialNumber);
    virtual int SetPICSerialNumber(unsigned char *serialNumber);
    virtual int GetDallasSerialNumber(unsigned char *serialNumber, unsigned char *crcValid);
    virtual int GetRandomNumber(unsigned short *number);
    virtual int EnableRandomNumberGenerator(unsigned long setting);
    virtual int DisableRandomNumberGenerator();
    virtual int ReadAndResetRTCFailure(unsigned char *flag);
    virtual int ReadClockAtBatteryFailure(unsigned long *time);
    virtual int SetClock(unsigned long time);
    virtual int GetClock(unsigned long *time);
    virtual int NextSecuritySwitchRead(unsigned long *time, unsigned char *switches);
    virtual int StartSecuritySwitchRead();
    virtual int ClearSecuritySwitches();
    virtual int ReadAndResetSecuritySwitchFlags(unsigned char *flagsA, unsigned char *flagsB);
    virtual int ReadAndResetBatteryFailFlag(unsigned char *flag);
    virtual int CachedReadAndResetSecuritySwitchFlags(unsigned char *flagsA, unsigned char *flagsB);
    virtual int EnableSPI();
    virtual int DisableSPI();
    virtual int SendSPI(unsigned char sendBits, unsigned char *txData, unsigned char spiOption,
                        unsigned char receiveBits, unsigned char *rxData);
    virtual int SendSEC(unsigned char headerA, unsigned char headerB, unsigned char dataLength, unsigned char *data,
                        unsigned char spiOption, unsigned char replyLength, unsigned char *rxData);
    virtual int SetSASMachineAddress(_usbSerialPort port, unsigned char address);
    virtual int SetConfig(_usbSerialPort port, _DCB *settings, _usbPortType type);
    virtual int SetSASAutoReply(_usbSerialPort port, unsigned int reply, unsigned char value);
    virtual int SetSASBusy(_usbSerialPort port, unsigned int busy);
    virtual int GetSASMessageStatus(_usbSerialPort port, unsigned int *status);
    virtual int Send(_usbSerialPort port, unsigned char *data, unsigned int length);
    virtual int Receive(_usbSerialPort port, unsigned char *data, unsigned long *length);
    virtual int ReceiveByteWithTimestamp(_usbSerialPort port, unsigned char *data, unsigned char *timestamp,
                                         unsigned int *received);
    virtual int Send9BitData(_usbSerialPort port, unsigned short *data, unsigned int count);
    virtual int Receive9BitData(_usbSerialPort port, unsigned short *data, unsigned long *count);
    virtual int ReceiveByteWithTimestamp9BitData(_usbSerialPort port, unsigned short *data, unsigned char *timestamp,
                                                 unsigned int *received);
    virtual int SetTimeoutMessage(_usbSerialPort port, unsigned char *message, unsigned char length, float seconds);
    virtual int GetParityErrors(_usbSerialPort port, unsigned short *count);
    virtual int ConfigureCCTalkPort(_usbSerialPort port, CCTalkConfig *config);
    virtual int ConfigureRS232Poll(_usbSerialPort port, RS232PollConfig *config);
    virtual int SetPolledHostTimeout(_usbSerialPort port, unsigned char slot, double seconds);
    virtual int EmptyPolledBuffer(_usbSerialPort port, unsigned char slot);
    virtual int ReceivePolledMessage(_usbSerialPort port, unsigned char slot, unsigned char *message,
                                     unsigned long *length, unsigned int *status);
    virtual int DeletePolledMessage(_usbSerialPort port, unsigned char slot);

    // Behind the slots above, whose order is fixed.
    /// The most bytes that this board hands over in one answer.
    virtual unsigned long LargestAnswer() const;

    int GetDeviceHandle(int unused) const { return (void)unused, deviceHandle; }
    int GetDeviceNo() const { return deviceNo; }

    /// One code for the whole process, whichever board it came from.
    static void SetLastError(_usbErrorCode error) { error_no = error; }
    static _usbErrorCode GetLastError() { return error_no; }
    static int ClearErrors()
    {
        error_no = usbErrorNone;
        return 1;
    }
    static int SetupErrorHandling();
    static void ReleaseErrorHandling();
    static _usbErrorCode error_no;

    /// Leaves the code for the caller and returns 0, the result of the failed operation.
    [[gnu::cold, gnu::noinline]] static int Fail(_usbErrorCode error)
    {
        SetLastError(error);
        return 0;
    }

    int EEPROMConfigured(int device);
    int UncheckedReadEEPROM(unsigned short address, unsigned char *data, unsigned int length);
    int SetPeriodOutputs(usbOutput &outputs, unsigned char request);
    int Get8051Version(unsigned char *version);

    /// The results that may be longer than the caller's buffer, received in a buffer of their own and cut to capacity.
    int Get8051Version(unsigned char *version, unsigned long capacity);
    int GetPICVersion(unsigned char *version, unsigned long capacity);
    int GetPICSerialNumber(unsigned char *serialNumber, unsigned long capacity);
    int GetDallasSerialNumber(unsigned char *serialNumber, unsigned char *crcValid, unsigned long capacity);
    int ReadDiagnosticData(unsigned char *requestData, unsigned long requestLength, unsigned char *reply,
                           unsigned long *replySize, unsigned long capacity);
    int SendSPI(unsigned char sendBits, unsigned char *txData, unsigned char spiOption, unsigned char receiveBits,
                unsigned char *rxData, unsigned long capacity);
    int SendSEC(unsigned char headerA, unsigned char headerB, unsigned char dataLength, unsigned char *data,
                unsigned char spiOption, unsigned char replyLength, unsigned char *rxData, unsigned long capacity);
    int Receive(_usbSerialPort port, unsigned char *data, unsigned long *length, unsigned long capacity);
    int Receive9BitData(_usbSerialPort port, unsigned short *data, unsigned long *count, unsigned long capacity);
    int ReceivePolledMessage(_usbSerialPort port, unsigned char slot, unsigned char *message, unsigned long *length,
                             unsigned int *status, unsigned long capacity);

    // The words of board/exchange.h.
    template <class... Byte>
    int Tell(Request request, Byte... bytes);
    template <unsigned long Decoded, class... Byte>
    int Ask(Request request, Response<Decoded> &response, Byte... bytes);
    int TellWith(Request request, unsigned char *payload, unsigned long length);
    template <unsigned long Decoded>
    int AskWith(Request request, Response<Decoded> &response, unsigned char *payload, unsigned long length);
    int AskInto(Request request, unsigned char *buffer);

    bool isHighSpeed() const { return speed == highSpeed; }

    /// 1 once the board's firmware is known to run; the banked SRAM maps its writes by it.
    unsigned char firmwareLoaded;
    /// A BusSpeed; sizes the chunks of long transfers.
    int speed;
    /// The object whose InitPort made this one; tested for null, never followed.
    SorvaneUSB *owner;
    int deviceNo;
    int referenceCount;
    int deviceHandle;

protected:
    /// Reports the number of a model through what may be null.
    static int ReportType(unsigned char *result, BoardType type);
    /// Fetches a clock value, which every request delivers in the same form.
    int ReadClockValue(Request request, unsigned long *time);

private:
    int SpinRamp(Request request, unsigned char reel, const usbRampTable &table);
    int NextTimestampedItem(_usbSerialPort port, unsigned int size, TimestampedItem &item);
    int AskForSerialData(_usbSerialPort port, unsigned char *data, unsigned long *count);
    int ReceivePolledParts(_usbSerialPort port, unsigned char slot, unsigned char *message, unsigned long *length,
                           unsigned int *status, unsigned long capacity, unsigned long largestPart);
    int ReadFlag(Request request, unsigned char *flag);
    int ReadSwitchFlags(Request request, unsigned char *flagsA, unsigned char *flagsB);
    int ReadIdentity(Request request, unsigned char *identity);
    int ReadIdentity(Request request, unsigned char *identity, unsigned long capacity);
};

#endif
