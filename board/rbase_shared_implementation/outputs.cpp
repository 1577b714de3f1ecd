// Steady outputs. The board is told the changes; the patterns of both flash periods, which all processes share, are
// brought up to date before it is told, and the locks are held until it has answered, so that the changes of several
// processes reach the board in the order in which they changed the patterns.
#include "board/exchange.h"
#include "board/rbase_shared_implementation/shared_board_state.h"

namespace
{

void apply(usbOutput &pattern, const usbOutput &off, const usbOutput &on)
{
    for (int k = 0; k < 5; ++k)
        pattern.bits[k] = static_cast<unsigned char>((pattern.bits[k] | on.bits[k]) & ~off.bits[k]);
}

}  // namespace

int RBaseImplementation::ModifyOutputs(usbOutput *outputsOff, usbOutput *outputsOn)
{
    SharedObjectLock onLock(SharedOutOnCopy);
    SharedObjectLock offLock(SharedOutOffCopy);
    const int device = GetDeviceNo();
    if (!outputsOff || !outputsOn)
        return Fail(usbErrorNullPointer);
    apply(onPattern(device), *outputsOff, *outputsOn);
    apply(offPattern(device), *outputsOff, *outputsOn);
    const unsigned char *on = outputsOn->bits;
    const unsigned char *off = outputsOff->bits;
    return Tell(Request::ModifyOutputs, on[0], on[1], on[2], on[3], on[4], off[0], off[1], off[2], off[3], off[4]);
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
