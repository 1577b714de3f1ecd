#include "tools/stand_in.h"

#include "firmware/images.h"

#include <algorithm>

namespace tools
{

const char *const howToSupplyImages =
    "Configure the build with -DSORVANE_FIRMWARE_DIR=DIR, a directory with the vendor's r20.bin, r20s.bin and r35.bin";

bool isStandIn(protocol::Model model)
{
    const unsigned char *image = model == protocol::Model::R20    ? Memory8051
                                 : model == protocol::Model::R20s ? R20S_Memory8051
                                                                  : R35_Memory8051;
    // Reset jumps to a loop in which the processor goes to its idle mode again and again.
    constexpr unsigned char loopAt = 0x80;
    constexpr unsigned char jump[] = {0x02, 0x00, loopAt};
    constexpr unsigned char idleLoop[] = {0x43, 0x87, 0x01, 0x80, 0xFB};
    return std::equal(std::begin(jump), std::end(jump), image) &&
           std::equal(std::begin(idleLoop), std::end(idleLoop), image + loopAt);
}

}  // namespace tools
