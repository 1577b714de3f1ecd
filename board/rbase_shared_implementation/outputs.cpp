// Steady outputs. The board is told the changes; the patterns of both flash periods, which all processes share, are
// brought up to date before it is told, and the locks are held until it has answered, so that the changes of several
// processes reach the board in the order in which they changed the patterns.
#include "board/exchange.h"
#include "board/rbase_shared_implementation/shared_board_state.h"

#include <cstdint>

namespace
{

/// The outputs as one number, output n being its bit n.
std::uint64_t numberOf(const usbOutput &outputs)
{
    std::uint32_t firstFour;
    std::memcpy(&firstFour, outputs.bits, sizeof firstFour);
    return firstFour | std::uint64_t{outputs.bits[4]} << 32;
}

void change(usbOutput &pattern, std::uint64_t off, std::uint64_t on)
{
    const std::uint64_t changed = (numberOf(pattern) | on) & ~off;
    const auto firstFour = static_cast<std::uint32_t>(changed);
    std::memcpy(pattern.bits, &firstFour, sizeof firstFour);
    pattern.bits[4] = static_cast<unsigned char>(changed >> 32);
}

}  // namespace

int RBaseImplementation::ModifyOutputs(usbOutput *outputsOff, usbOutput *outputsOn)
{
    SharedObjectLock onLock(SharedOutOnCopy);
    SharedObjectLock offLock(SharedOutOffCopy);
    const int device = GetDeviceNo();
    if (!outputsOff || !outputsOn)
        return Fail(usbErrorNullPointer);
    const std::uint64_t off = numberOf(*outputsOff);
    const std::uint64_t on = numberOf(*outputsOn);
    change(onPattern(device), off, on);
    change(offPattern(device), off, on);
    Payload<2 * sizeof(usbOutput)> payload;
    payload.append(outputsOn->bits, sizeof outputsOn->bits).append(outputsOff->bits, sizeof outputsOff->bits);
    return TellWith(Request::ModifyOutputs, payload.bytes, payload.length);
}

int RBaseImplementation::SetOutputBit(_usbOutputBitId output, unsigned int state)
{
    if (output > usbOutput37 || state > 1)
        return Fail(usbErrorParameter);
    usbOutput none = {};
    usbOutput one = {};
    one.bits[output / 8] = static_cast<unsigned char>(1 << output % 8);
    return state ? ModifyOutputs(&none, &one) : ModifyOutputs(&one, &none);
}

int RBaseImplementation::SetOutputs(unsigned char *outputs)
{
    if (!outputs)
        return Fail(usbErrorNullPointer);
    usbOutput on;
    usbOutput off;
    for (int k = 0; k < 5; ++k) {
        on.bits[k] = outputs[k];
        off.bits[k] = static_cast<unsigned char>(~outputs[k]);
    }
    return ModifyOutputs(&off, &on);
}

int RBaseImplementation::SetOutputBrightness(unsigned char level)
{
    if (level > 10)
        return Fail(usbErrorParameter);
    return Tell(Request::SetOutputBrightness, level);
}
