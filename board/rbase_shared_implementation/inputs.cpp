// Inputs: input n is bit n % 8 of byte n / 8 of the five bytes that the board answers.
#include "board/exchange.h"

namespace
{

int getFiveInputBytes(RBaseImplementation &board, Request request, unsigned char *bytes)
{
    if (!bytes)
        return RBaseImplementation::Fail(usbErrorNullPointer);
    Response<sizeof(usbInput)> response;
    if (!board.Ask(request, response))
        return 0;
    std::memcpy(bytes, response.bytes, sizeof(usbInput));
    return 1;
}

}  // namespace

int RBaseImplementation::GetInputs(unsigned char *buffer)
{
    return getFiveInputBytes(*this, Request::GetInputs, buffer);
}

int RBaseImplementation::GetInputs(usbInput *inputs)
{
    return getFiveInputBytes(*this, Request::GetInputs, inputs ? inputs->bits : nullptr);
}

int RBaseImplementation::GetChangedInputs(usbInput *inputs)
{
    return getFiveInputBytes(*this, Request::GetChangedInputs, inputs ? inputs->bits : nullptr);
}

int RBaseImplementation::GetRawInputs(usbInput *inputs)
{
    return getFiveInputBytes(*this, Request::GetRawInputs, inputs ? inputs->bits : nullptr);
}

int RBaseImplementation::GetInputBit(_usbInputBitId input, unsigned int *state)
{
    if (!state)
        return Fail(usbErrorNullPointer);
    if (input > usbInput32)
        return Fail(usbErrorParameter);
    unsigned char bytes[8];
    if (!GetInputs(bytes))
        return 0;
    *state = bytes[input / 8] >> input % 8 & 1;
    return 1;
}

int RBaseImplementation::InputMultiplexing(usbInputMultiplexing mode)
{
    if (mode > usbInputMultiplexingOn)
        return Fail(usbErrorParameter);
    return Tell(Request::InputMultiplexing, mode);
}

int RBaseImplementation::GetMultiplexedInputs(usbMultiplexedInput *inputs)
{
    if (!inputs)
        return Fail(usbErrorNullPointer);
    Response<sizeof(usbMultiplexedInput)> response;
    if (!Ask(Request::GetMultiplexedInputs, response))
        return 0;
    inputs->leadByte = response.u8(0);
    std::memcpy(inputs->groups, response.bytes + 1, sizeof inputs->groups);
    return 1;
}
