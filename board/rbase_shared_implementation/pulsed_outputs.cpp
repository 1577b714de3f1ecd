// Pulses that the board times by itself, on outputs 0 to 31. They leave the shared output patterns alone. On the wire
// the pulse value comes before the output.
#include "board/exchange.h"

namespace
{

constexpr unsigned char lastPulsedOutput = 31;

}  // namespace

int RBaseImplementation::PulseOutput(unsigned char output, unsigned char pulseValue)
{
    if (output > lastPulsedOutput)
        return Fail(usbErrorParameter);
    return Tell(Request::PulseOutput, pulseValue, output);
}

int RBaseImplementation::PulseOffOutput(unsigned char output, unsigned char pulseValue)
{
    if (output > lastPulsedOutput)
        return Fail(usbErrorParameter);
    return Tell(Request::PulseOffOutput, pulseValue, output);
}

int RBaseImplementation::PulseOutputResult(unsigned char *resultA, unsigned int *resultB, unsigned int *resultC)
{
    if (!resultA || !resultB || !resultC)
        return Fail(usbErrorNullPointer);
    Response<3> response;
    if (!Ask(Request::PulseOutputResult, response))
        return 0;
    *resultA = response.u8(0);
    *resultB = response.u8(1);
    *resultC = response.u8(2);
    return 1;
}
