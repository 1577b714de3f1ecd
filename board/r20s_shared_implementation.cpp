// What an R20s does in its own way: its image and its SRAM.
#include "board/banked_sram.h"
#include "board/r20s_implementation.h"
#include "firmware/images.h"

namespace
{

constexpr unsigned long sramLimit = 0x73FFE;

}  // namespace

int R20s_Implementation::GetBoardType(unsigned char *type)
{
    return ReportType(type, typeR20s);
}

int R20s_Implementation::Download8051Software()
{
    if (!owner)
        return 0;
    return WriteSRAM(0, const_cast<unsigned char *>(R20S_Memory8051), sizeof R20S_Memory8051);
}

int R20s_Implementation::WriteSRAM(unsigned long address, unsigned char *data, unsigned int length)
{
    return writeBankedSRAM(*this, sramLimit, address, data, length);
}

int R20s_Implementation::ReadSRAM(unsigned long address, unsigned char *data, unsigned long length)
{
    return readBankedSRAM(*this, sramLimit, address, data, length);
}
