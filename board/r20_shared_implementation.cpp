// What an R20 does in its own way: its shorter pulse and hopper requests, its image and its flat SRAM.
#include "board/exchange.h"
#include "board/flat_memory.h"
#include "board/r20_implementation.h"
#include "board/transfer_range.h"
#include "firmware/images.h"

int R20Implementation::GetBoardType(unsigned char *type)
{
    return ReportType(type, typeR20);
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
    return writeFlatMemory(*this, Request::WriteFlatSRAM, isHighSpeed() ? 249 : 57, address, data, length);
}

int R20Implementation::ReadSRAM(unsigned long address, unsigned char *data, unsigned long length)
{
    if (!checkRange(address, data, length))
        return 0;
    return readFlatMemory(*this, Request::ReadFlatSRAM, address, data, length);
}
