// What an R35 does in its own way: its image, its SRAM, the clock that stopped with the battery.
#include "board/banked_sram.h"
#include "board/r35_implementation.h"
#include "firmware/images.h"

namespace
{

constexpr unsigned long sramLimit = 0xF3FFE;

}  // namespace

int R35_Implementation::GetBoardType(unsigned char *type)
{
    return ReportType(type, typeR35);
}

int R35_Implementation::Download8051Software()
{
    if (!owner)
        return 0;
    return WriteSRAM(0, const_cast<unsigned char *>(R35_Memory8051), sizeof R35_Memory8051);
}

int R35_Implementation::WriteSRAM(unsigned long address, unsigned char *data, unsigned int length)
{
    return writeBankedSRAM(*this, sramLimit, address, data, length);
}

int R35_Implementation::ReadSRAM(unsigned long address, unsigned char *data, unsigned long length)
{
    return readBankedSRAM(*this, sramLimit, address, data, length);
}

int R35_Implementation::ReadClockAtBatteryFailure(unsigned long *time)
{
    return ReadClockValue(Request::ReadClockAtBatteryFailure, time);
}
