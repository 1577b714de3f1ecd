// Flashing outputs: the board holds one pattern for the on period of the flash cycle and one for the off period, and
// takes either only as a whole. A single bit is therefore changed in the shared copy, under its lock, and the copy is
// sent before the lock is given back.
#include "board/exchange.h"
#include "board/rbase_shared_implementation/shared_board_state.h"

int RBaseImplementation::SetPeriodOutputs(usbOutput &outputs, unsigned char request)
{
    unsigned char ignored[usbLargestAnswer];
    unsigned long count = 0;
    return PerformUSBIO(request, pipeOf(Request::SetOnPeriodOutputs), outputs.bits, sizeof outputs.bits, ignored,
                        &count);
}

int RBaseImplementation::SetOnPeriodOutputs(usbOutput outputs)
{
    SharedObjectLock lock(SharedOutOnCopy);
    onPattern(GetDeviceNo()) = outputs;
    return SetPeriodOutputs(outputs, codeOf(Request::SetOnPeriodOutputs));
}

int RBaseImplementation::SetOffPeriodOutputs(usbOutput outputs)
{
    SharedObjectLock lock(SharedOutOffCopy);
    offPattern(GetDeviceNo()) = outputs;
    return SetPeriodOutputs(outputs, codeOf(Request::SetOffPeriodOutputs));
}

namespace
{

bool namesOutput(_usbOutputId outputByte, int bit)
{
    return outputByte <= usbOutputByte4 && bit >= 0 && bit <= (outputByte == usbOutputByte4 ? 5 : 7);
}

void changeBit(usbOutput &pattern, _usbOutputId outputByte, int bit, unsigned int state)
{
    unsigned char &byte = pattern.bits[outputByte];
    const int mask = 1 << bit;
    byte = static_cast<unsigned char>(state ? byte | mask : byte & ~mask);
}

}  // namespace

int RBaseImplementation::SetOnPeriodOutputBit(_usbOutputId outputByte, int bit, unsigned int state)
{
    SharedObjectLock lock(SharedOutOnCopy);
    usbOutput &pattern = onPattern(GetDeviceNo());
    if (!namesOutput(outputByte, bit) || state > 1)
        return Fail(usbErrorParameter);
    changeBit(pattern, outputByte, bit, state);
    return SetPeriodOutputs(pattern, codeOf(Request::SetOnPeriodOutputs));
}

int RBaseImplementation::SetOffPeriodOutputBit(_usbOutputId outputByte, int bit, unsigned int state)
{
    SharedObjectLock lock(SharedOutOffCopy);
    usbOutput &pattern = offPattern(GetDeviceNo());
    if (!namesOutput(outputByte, bit) || state > 1)
        return Fail(usbErrorParameter);
    changeBit(pattern, outputByte, bit, state);
    return SetPeriodOutputs(pattern, codeOf(Request::SetOffPeriodOutputs));
}
