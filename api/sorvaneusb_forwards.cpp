// Every operation here goes to the same-named one of the open board's implementation object, with the same arguments;
// without a board it returns 0 and leaves the error store as it was. What does more, or has another name there, stands
// in sorvaneusb_special_forwards.cpp.
#include "api/sorvaneusb.h"
#include "board/rbase_implementation.h"

int SorvaneUSB::Get8051Version(unsigned char *version)
{
    return implementation ? implementation->Get8051Version(version) : 0;
}

int SorvaneUSB::Get8051Version(unsigned char *version, unsigned long capacity)
{
    return implementation ? implementation->Get8051Version(version, capacity) : 0;
}

int SorvaneUSB::GetPICVersion(unsigned char *version)
{
    return implementation ? implementation->GetPICVersion(version) : 0;
}

int SorvaneUSB::GetPICVersion(unsigned char *version, unsigned long capacity)
{
    return implementation ? implementation->GetPICVersion(version, capacity) : 0;
}

int SorvaneUSB::GetDallasSerialNumber(unsigned char *serialNumber, unsigned char *crcValid)
{
    return implementation ? implementation->GetDallasSerialNumber(serialNumber, crcValid) : 0;
}

int SorvaneUSB::GetDallasSerialNumber(unsigned char *serialNumber, unsigned char *crcValid, unsigned long capacity)
{
    return implementation ? implementation->GetDallasSerialNumber(serialNumber, crcValid, capacity) : 0;
}

int SorvaneUSB::GetPICSerialNumber(unsigned char *serialNumber)
{
    return implementation ? implementation->GetPICSerialNumber(serialNumber) : 0;
}

int SorvaneUSB::GetPICSerialNumber(unsigned char *serialNumber, unsigned long capacity)
{
    return implementation ? implementation->GetPICSerialNumber(serialNumber, capacity) : 0;
}

int SorvaneUSB::SetPICSerialNumber(unsigned char *serialNumber)
{
    return implementation ? implementation->SetPICSerialNumber(serialNumber) : 0;
}

int SorvaneUSB::GetInputBit(_usbInputBitId input, unsigned int *state)
{
    return implementation ? implementation->GetInputBit(input, state) : 0;
}

int SorvaneUSB::GetInputs(unsigned char *buffer)
{
    return implementation ? implementation->GetInputs(buffer) : 0;
}

int SorvaneUSB::SetOutputBit(_usbOutputBitId output, unsigned int state)
{
    return implementation ? implementation->SetOutputBit(output, state) : 0;
}

int SorvaneUSB::SetOutputs(unsigned char *outputs)
{
    return implementation ? implementation->SetOutputs(outputs) : 0;
}

int SorvaneUSB::GetInputs(usbInput *inputs)
{
    return implementation ? implementation->GetInputs(inputs) : 0;
}

int SorvaneUSB::InputMultiplexing(usbInputMultiplexing mode)
{
    return implementation ? implementation->InputMultiplexing(mode) : 0;
}

int SorvaneUSB::GetMultiplexedInputs(usbMultiplexedInput *inputs)
{
    return implementation ? implementation->GetMultiplexedInputs(inputs) : 0;
}

int SorvaneUSB::GetChangedInputs(usbInput *inputs)
{
    return implementation ? implementation->GetChangedInputs(inputs) : 0;
}

int SorvaneUSB::GetRawInputs(usbInput *inputs)
{
    return implementation ? implementation->GetRawInputs(inputs) : 0;
}

int SorvaneUSB::ModifyOutputs(usbOutput *outputsOff, usbOutput *outputsOn)
{
    return implementation ? implementation->ModifyOutputs(outputsOff, outputsOn) : 0;
}

int SorvaneUSB::SetOnPeriodOutputs(usbOutput outputs)
{
    return implementation ? implementation->SetOnPeriodOutputs(outputs) : 0;
}

int SorvaneUSB::SetOffPeriodOutputs(usbOutput outputs)
{
    return implementation ? implementation->SetOffPeriodOutputs(outputs) : 0;
}

int SorvaneUSB::SetOnPeriodOutputBit(_usbOutputId outputByte, int bit, unsigned int state)
{
    return implementation ? implementation->SetOnPeriodOutputBit(outputByte, bit, state) : 0;
}

int SorvaneUSB::SetOffPeriodOutputBit(_usbOutputId outputByte, int bit, unsigned int state)
{
    return implementation ? implementation->SetOffPeriodOutputBit(outputByte, bit, state) : 0;
}

int SorvaneUSB::SetOutputBrightness(unsigned char level)
{
    return implementation ? implementation->SetOutputBrightness(level) : 0;
}

int SorvaneUSB::PulseOutput(unsigned char output, unsigned char pulseValue)
{
    return implementation ? implementation->PulseOutput(output, pulseValue) : 0;
}

int SorvaneUSB::PulseOffOutput(unsigned char output, unsigned char pulseValue)
{
    return implementation ? implementation->PulseOffOutput(output, pulseValue) : 0;
}

int SorvaneUSB::PulseOutputResult(unsigned char *resultA, unsigned int *resultB, unsigned int *resultC)
{
    return implementation ? implementation->PulseOutputResult(resultA, resultB, resultC) : 0;
}

int SorvaneUSB::ConfigurePulsedInput(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState)
{
    return implementation ? implementation->ConfigurePulsedInput(input, inputSetting, activeState) : 0;
}

int SorvaneUSB::ConfigurePulsedInputEx(_usbInputBitId input, unsigned char inputSetting, unsigned char inputSettingEx,
                                       ActiveState activeState)
{
    return implementation ? implementation->ConfigurePulsedInputEx(input, inputSetting, inputSettingEx, activeState)
                          : 0;
}

int SorvaneUSB::BeginPulsedInputCheck(_usbInputBitId input)
{
    return implementation ? implementation->BeginPulsedInputCheck(input) : 0;
}

int SorvaneUSB::EndPulsedInputCheck(_usbInputBitId input)
{
    return implementation ? implementation->EndPulsedInputCheck(input) : 0;
}

int SorvaneUSB::ResetPulsedInputCounter(_usbInputBitId input)
{
    return implementation ? implementation->ResetPulsedInputCounter(input) : 0;
}

int SorvaneUSB::DecrementPulsedInputCounter(_usbInputBitId input)
{
    return implementation ? implementation->DecrementPulsedInputCounter(input) : 0;
}

int SorvaneUSB::ReadPulsedInputCounter(_usbInputBitId input, unsigned char *counter)
{
    return implementation ? implementation->ReadPulsedInputCounter(input, counter) : 0;
}

int SorvaneUSB::GetPulsedInputStatus(_usbInputBitId input, unsigned int *active, unsigned char *hopperByte)
{
    return implementation ? implementation->GetPulsedInputStatus(input, active, hopperByte) : 0;
}

int SorvaneUSB::ReleaseParallelHopperCoins(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState,
                                           _usbOutputBitId hopperOutput, unsigned short coinCount,
                                           unsigned char hopperSetting)
{
    return implementation ? implementation->ReleaseParallelHopperCoins(input, inputSetting, activeState, hopperOutput,
                                                                       coinCount, hopperSetting)
                          : 0;
}

int SorvaneUSB::ReleaseParallelHopperCoinsEx(_usbInputBitId input, unsigned char inputSetting,
                                             unsigned char inputSettingEx, ActiveState activeState,
                                             _usbOutputBitId hopperOutput, unsigned short coinCount,
                                             unsigned char hopperSetting)
{
    return implementation
               ? implementation->ReleaseParallelHopperCoinsEx(input, inputSetting, inputSettingEx, activeState,
                                                              hopperOutput, coinCount, hopperSetting)
               : 0;
}

int SorvaneUSB::GetParallelHopperStatus(_usbInputBitId input, ReleaseHopperCoinsStatus *status,
                                        unsigned char *hopperByte)
{
    return implementation ? implementation->GetParallelHopperStatus(input, status, hopperByte) : 0;
}

int SorvaneUSB::StopHopperCoinRelease(_usbInputBitId input)
{
    return implementation ? implementation->StopHopperCoinRelease(input) : 0;
}

int SorvaneUSB::ConfigureReelsEx(unsigned char reels, unsigned short reelSetting, unsigned char reelOption)
{
    return implementation ? implementation->ConfigureReelsEx(reels, reelSetting, reelOption) : 0;
}

int SorvaneUSB::SpinReels(unsigned char reel, unsigned char spinMode, unsigned short steps)
{
    return implementation ? implementation->SpinReels(reel, spinMode, steps) : 0;
}

int SorvaneUSB::SpinRampUp(unsigned char reel, usbRampTable table)
{
    return implementation ? implementation->SpinRampUp(reel, table) : 0;
}

int SorvaneUSB::SpinRampDown(unsigned char reel, usbRampTable table)
{
    return implementation ? implementation->SpinRampDown(reel, table) : 0;
}

int SorvaneUSB::SetDutyCycle(unsigned char dutyA, unsigned char dutyB, unsigned char dutyC)
{
    return implementation ? implementation->SetDutyCycle(dutyA, dutyB, dutyC) : 0;
}

int SorvaneUSB::GetReelStatus(usbReelStatus *status)
{
    return implementation ? implementation->GetReelStatus(status) : 0;
}

int SorvaneUSB::GetReelStatusEx(ReelStatusEx *status)
{
    return implementation ? implementation->GetReelStatusEx(status) : 0;
}

int SorvaneUSB::ReelSynchroniseEnable(unsigned char enable)
{
    return implementation ? implementation->ReelSynchroniseEnable(enable) : 0;
}

int SorvaneUSB::ConfigureRecordingInputs(_usbInputBitId *recordInputs, unsigned long recordAddress,
                                         unsigned short recordLength)
{
    return implementation ? implementation->ConfigureRecordingInputs(recordInputs, recordAddress, recordLength) : 0;
}

int SorvaneUSB::StartRecordingInputs(unsigned short startValue)
{
    return implementation ? implementation->StartRecordingInputs(startValue) : 0;
}

int SorvaneUSB::GetRecordingStatus(RecordingStatus *status, unsigned short *valueA, unsigned short *valueB)
{
    return implementation ? implementation->GetRecordingStatus(status, valueA, valueB) : 0;
}

int SorvaneUSB::ReadDiagnosticData(unsigned char *requestData, unsigned long requestLength, unsigned char *reply,
                                   unsigned long *replySize)
{
    return implementation ? implementation->ReadDiagnosticData(requestData, requestLength, reply, replySize) : 0;
}

int SorvaneUSB::ReadDiagnosticData(unsigned char *requestData, unsigned long requestLength, unsigned char *reply,
                                   unsigned long *replySize, unsigned long capacity)
{
    return implementation ? implementation->ReadDiagnosticData(requestData, requestLength, reply, replySize, capacity)
                          : 0;
}

int SorvaneUSB::WriteDiagnosticData(unsigned char *diagnosticData, unsigned long diagnosticLength)
{
    return implementation ? implementation->WriteDiagnosticData(diagnosticData, diagnosticLength) : 0;
}

int SorvaneUSB::SetConfig(_usbSerialPort port, _DCB *settings, _usbPortType type)
{
    return implementation ? implementation->SetConfig(port, settings, type) : 0;
}

int SorvaneUSB::Send(_usbSerialPort port, unsigned char *data, unsigned int length)
{
    return implementation ? implementation->Send(port, data, length) : 0;
}

int SorvaneUSB::Receive(_usbSerialPort port, unsigned char *data, unsigned long *length)
{
    return implementation ? implementation->Receive(port, data, length) : 0;
}

int SorvaneUSB::Receive(_usbSerialPort port, unsigned char *data, unsigned long *length, unsigned long capacity)
{
    return implementation ? implementation->Receive(port, data, length, capacity) : 0;
}

int SorvaneUSB::ReceiveByteWithTimestamp(_usbSerialPort port, unsigned char *data, unsigned char *timestamp,
                                         unsigned int *received)
{
    return implementation ? implementation->ReceiveByteWithTimestamp(port, data, timestamp, received) : 0;
}

int SorvaneUSB::Send9BitData(_usbSerialPort port, unsigned short *data, unsigned int count)
{
    return implementation ? implementation->Send9BitData(port, data, count) : 0;
}

int SorvaneUSB::Receive9BitData(_usbSerialPort port, unsigned short *data, unsigned long *count)
{
    return implementation ? implementation->Receive9BitData(port, data, count) : 0;
}

int SorvaneUSB::Receive9BitData(_usbSerialPort port, unsigned short *data, unsigned long *count, unsigned long capacity)
{
    return implementation ? implementation->Receive9BitData(port, data, count, capacity) : 0;
}

int SorvaneUSB::ReceiveByteWithTimestamp9BitData(_usbSerialPort port, unsigned short *data, unsigned char *timestamp,
                                                 unsigned int *received)
{
    return implementation ? implementation->ReceiveByteWithTimestamp9BitData(port, data, timestamp, received) : 0;
}

int SorvaneUSB::SetTimeoutMessage(_usbSerialPort port, unsigned char *message, unsigned char length, float seconds)
{
    return implementation ? implementation->SetTimeoutMessage(port, message, length, seconds) : 0;
}

int SorvaneUSB::GetParityErrors(_usbSerialPort port, unsigned short *count)
{
    return implementation ? implementation->GetParityErrors(port, count) : 0;
}

int SorvaneUSB::ConfigureCCTalkPort(_usbSerialPort port, CCTalkConfig *config)
{
    return implementation ? implementation->ConfigureCCTalkPort(port, config) : 0;
}

int SorvaneUSB::ConfigureRS232Poll(_usbSerialPort port, RS232PollConfig *config)
{
    return implementation ? implementation->ConfigureRS232Poll(port, config) : 0;
}

int SorvaneUSB::SetPolledHostTimeout(_usbSerialPort port, unsigned char slot, double seconds)
{
    return implementation ? implementation->SetPolledHostTimeout(port, slot, seconds) : 0;
}

int SorvaneUSB::EmptyPolledBuffer(_usbSerialPort port, unsigned char slot)
{
    return implementation ? implementation->EmptyPolledBuffer(port, slot) : 0;
}

int SorvaneUSB::ReceivePolledMessage(_usbSerialPort port, unsigned char slot, unsigned char *message,
                                     unsigned long *length, unsigned int *status)
{
    return implementation ? implementation->ReceivePolledMessage(port, slot, message, length, status) : 0;
}

int SorvaneUSB::ReceivePolledMessage(_usbSerialPort port, unsigned char slot, unsigned char *message,
                                     unsigned long *length, unsigned int *status, unsigned long capacity)
{
    return implementation ? implementation->ReceivePolledMessage(port, slot, message, length, status, capacity) : 0;
}

int SorvaneUSB::DeletePolledMessage(_usbSerialPort port, unsigned char slot)
{
    return implementation ? implementation->DeletePolledMessage(port, slot) : 0;
}

int SorvaneUSB::EnableSPI()
{
    return implementation ? implementation->EnableSPI() : 0;
}

int SorvaneUSB::DisableSPI()
{
    return implementation ? implementation->DisableSPI() : 0;
}

int SorvaneUSB::SendSPI(unsigned char sendBits, unsigned char *txData, unsigned char spiOption,
                        unsigned char receiveBits, unsigned char *rxData)
{
    return implementation ? implementation->SendSPI(sendBits, txData, spiOption, receiveBits, rxData) : 0;
}

int SorvaneUSB::SendSPI(unsigned char sendBits, unsigned char *txData, unsigned char spiOption,
                        unsigned char receiveBits, unsigned char *rxData, unsigned long capacity)
{
    return implementation ? implementation->SendSPI(sendBits, txData, spiOption, receiveBits, rxData, capacity) : 0;
}

int SorvaneUSB::SendSEC(unsigned char headerA, unsigned char headerB, unsigned char dataLength, unsigned char *data,
                        unsigned char spiOption, unsigned char replyLength, unsigned char *rxData)
{
    return implementation ? implementation->SendSEC(headerA, headerB, dataLength, data, spiOption, replyLength, rxData)
                          : 0;
}

int SorvaneUSB::SendSEC(unsigned char headerA, unsigned char headerB, unsigned char dataLength, unsigned char *data,
                        unsigned char spiOption, unsigned char replyLength, unsigned char *rxData,
                        unsigned long capacity)
{
    return implementation
               ? implementation->SendSEC(headerA, headerB, dataLength, data, spiOption, replyLength, rxData, capacity)
               : 0;
}

int SorvaneUSB::ConfigureEEPROM(R20EEPROM *eeprom)
{
    return implementation ? implementation->ConfigureEEPROM(eeprom) : 0;
}

int SorvaneUSB::CheckEEPROM(R20EEPROM *eeprom)
{
    return implementation ? implementation->CheckEEPROM(eeprom) : 0;
}

int SorvaneUSB::ReadEEPROM(unsigned short address, unsigned char *data, unsigned int length)
{
    return implementation ? implementation->ReadEEPROM(address, data, length) : 0;
}

int SorvaneUSB::WriteEEPROM(unsigned short address, unsigned char *data, unsigned int length)
{
    return implementation ? implementation->WriteEEPROM(address, data, length) : 0;
}

int SorvaneUSB::ReadSRAM(unsigned short address, unsigned char *data, unsigned int length)
{
    return implementation ? implementation->ReadSRAM(address, data, length) : 0;
}

int SorvaneUSB::WriteSRAM(unsigned short address, unsigned char *data, unsigned int length)
{
    return implementation ? implementation->WriteSRAM(address, data, length) : 0;
}

int SorvaneUSB::SetClock(unsigned long time)
{
    return implementation ? implementation->SetClock(time) : 0;
}

int SorvaneUSB::GetClock(unsigned long *time)
{
    return implementation ? implementation->GetClock(time) : 0;
}

int SorvaneUSB::NextSecuritySwitchRead(unsigned long *time, unsigned char *switches)
{
    return implementation ? implementation->NextSecuritySwitchRead(time, switches) : 0;
}

int SorvaneUSB::StartSecuritySwitchRead()
{
    return implementation ? implementation->StartSecuritySwitchRead() : 0;
}

int SorvaneUSB::ClearSecuritySwitches()
{
    return implementation ? implementation->ClearSecuritySwitches() : 0;
}

int SorvaneUSB::ReadAndResetSecuritySwitchFlags(unsigned char *flagsA, unsigned char *flagsB)
{
    return implementation ? implementation->ReadAndResetSecuritySwitchFlags(flagsA, flagsB) : 0;
}

int SorvaneUSB::ReadAndResetBatteryFailFlag(unsigned char *flag)
{
    return implementation ? implementation->ReadAndResetBatteryFailFlag(flag) : 0;
}

int SorvaneUSB::CachedReadAndResetSecuritySwitchFlags(unsigned char *flagsA, unsigned char *flagsB)
{
    return implementation ? implementation->CachedReadAndResetSecuritySwitchFlags(flagsA, flagsB) : 0;
}

int SorvaneUSB::EnableRandomNumberGenerator(unsigned long setting)
{
    return implementation ? implementation->EnableRandomNumberGenerator(setting) : 0;
}

int SorvaneUSB::DisableRandomNumberGenerator()
{
    return implementation ? implementation->DisableRandomNumberGenerator() : 0;
}

int SorvaneUSB::GetRandomNumber(unsigned short *number)
{
    return implementation ? implementation->GetRandomNumber(number) : 0;
}

int SorvaneUSB::ReadAndResetRTCFailure(unsigned char *flag)
{
    return implementation ? implementation->ReadAndResetRTCFailure(flag) : 0;
}

int SorvaneUSB::ReadClockAtBatteryFailure(unsigned long *time)
{
    return implementation ? implementation->ReadClockAtBatteryFailure(time) : 0;
}

int SorvaneUSB::PerformUSBIO(unsigned char request, int pipe, unsigned char *outData, unsigned long outLength,
                             unsigned char *inData, unsigned long *inLength)
{
    return implementation ? implementation->PerformUSBIO(request, pipe, outData, outLength, inData, inLength) : 0;
}
