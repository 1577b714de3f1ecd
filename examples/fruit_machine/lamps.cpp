#include "lamps.h"

namespace fruit_machine
{

void Lamps::allOff()
{
    unsigned char none[5] = {};
    must(board_.SetOutputs(none), board_, "SetOutputs");
    lights_.fill(Light::Off);
}

void Lamps::set(_usbOutputBitId lamp, Light light)
{
    if (lights_[lamp] == light)
        return;
    if (light == Light::Flashing) {
        const _usbOutputId byte = static_cast<_usbOutputId>(lamp / 8);
        const int bit = static_cast<int>(lamp % 8);
        must(board_.SetOnPeriodOutputBit(byte, bit, 1), board_, "SetOnPeriodOutputBit");
        must(board_.SetOffPeriodOutputBit(byte, bit, 0), board_, "SetOffPeriodOutputBit");
    } else {
        must(board_.SetOutputBit(lamp, light == Light::On ? 1 : 0), board_, "SetOutputBit");
    }
    lights_[lamp] = light;
}

}  // namespace fruit_machine
