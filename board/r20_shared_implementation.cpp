// What an R20 does in its own way: what it lacks, its shorter pulse and hopper requests, its image and its flat SRAM.
#include "board/exchange.h"
#include "board/flat_memory.h"
#include "board/model_words.h"
#include "board/r20_implementation.h"
#include "board/transfer_range.h"
#include "firmware/images.h"

int R20Implementation::GetBoardType(unsigned char *type)
{
    return reportType(type, 1);
}

// The R20's coin requests lack the last byte of the other models' and are sent without a range check.

int R20Implementation::ConfigurePulsedInput(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState)
{
    return Tell(Request::ConfigurePulsedInput, input, inputSetting, activeState);
}

int R20Implementation::ReleaseParallelHopperCoins(_usbInputBitId input, unsigned char inputSetting,
                                                  ActiveState activeState, _usbOutputBitId hopperOutput,
                                                  unsigned short coinCount, unsigned char hopperSetting)
{
    return Tell(Request::ReleaseParallelHopperCoins, input, inputSetting, activeState, hopperOutput, high(coinCount),
                low(coinCount), hopperSetting);
}

// What an R20 lacks: nothing is checked and nothing is sent.

int R20Implementation::ConfigurePulsedInputEx(_usbInputBitId, unsigned char, unsigned char, ActiveState)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::ReleaseParallelHopperCoinsEx(_usbInputBitId, unsigned char, unsigned char, ActiveState,
                                                    _usbOutputBitId, unsigned short, unsigned char)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::StopHopperCoinRelease(_usbInputBitId)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::ConfigureRecordingInputs(_usbInputBitId *, unsigned long, unsigned short)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::StartRecordingInputs(unsigned short)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::GetRecordingStatus(RecordingStatus *, unsigned short *, unsigned short *)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::ReadDiagnosticData(unsigned char *, unsigned long, unsigned char *, unsigned long *)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::WriteDiagnosticData(unsigned char *, unsigned long)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::GetDallasSerialNumber(unsigned char *, unsigned char *)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::ReadAndResetRTCFailure(unsigned char *)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::ReadClockAtBatteryFailure(unsigned long *)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::ReadAndResetBatteryFailFlag(unsigned char *)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::SetSASMachineAddress(_usbSerialPort, unsigned char)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::SetSASAutoReply(_usbSerialPort, unsigned int, unsigned char)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::SetSASBusy(_usbSerialPort, unsigned int)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::GetSASMessageStatus(_usbSerialPort, unsigned int *)
{
    return Fail(usbErrorNotSupported);
}

int R20Implementation::Download8051Software()
{
    return WriteSRAM(0, const_cast<unsigned char *>(Memory8051), sizeof Memory8051) ? 1 : 0;
}

namespace
{

constexpr unsigned long lastAddress = 0xFFFF;

int checkRange(unsigned long address, const unsigned char *data, unsigned long length)
{
    if (!withinLimit(address, length, lastAddress))
        return RBaseImplementation::Fail(usbErrorNotSupported);
    if (!data)
        return RBaseImplementation::Fail(usbErrorNullPointer);
    return 1;
}

}  // namespace

int R20Implementation::WriteSRAM(unsigned long address, unsigned char *data, unsigned int length)
{
    if (!checkRange(address, data, length))
        return 0;
    return writeFlatMemory(*this, Request::WriteFlatSRAM, speed == 2 ? 249 : 57, address, data, length);
}

int R20Implementation::ReadSRAM(unsigned long address, unsigned char *data, unsigned long length)
{
    if (!checkRange(address, data, length))
        return 0;
    return readFlatMemory(*this, Request::ReadFlatSRAM, address, data, length);
}
