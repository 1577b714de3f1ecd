// Inputs whose pulses the board counts, and hoppers that pay out until a number of coins has passed their coin input.
#include "board/exchange.h"

namespace
{

constexpr _usbInputBitId lastCoinInput = usbInput32;
constexpr _usbInputBitId lastCountedInput = usbInput23;

}  // namespace

int RBaseImplementation::ConfigurePulsedInput(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState)
{
    return ConfigurePulsedInputEx(input, inputSetting, 0, activeState);
}

int RBaseImplementation::ConfigurePulsedInputEx(_usbInputBitId input, unsigned char inputSetting,
                                                unsigned char inputSettingEx, ActiveState activeState)
{
    if (input > lastCoinInput)
        return Fail(usbErrorParameter);
    return Tell(Request::ConfigurePulsedInput, input, inputSetting, activeState, inputSettingEx);
}

int RBaseImplementation::BeginPulsedInputCheck(_usbInputBitId input)
{
    if (input > lastCountedInput)
        return Fail(usbErrorParameter);
    return Tell(Request::PulsedInputCheck, input, 1);
}

int RBaseImplementation::EndPulsedInputCheck(_usbInputBitId input)
{
    if (input > lastCountedInput)
        return Fail(usbErrorParameter);
    return Tell(Request::PulsedInputCheck, input, 0);
}

int RBaseImplementation::ResetPulsedInputCounter(_usbInputBitId input)
{
    if (input > lastCountedInput)
        return Fail(usbErrorParameter);
    return Tell(Request::ResetPulsedInputCounter, input);
}

int RBaseImplementation::DecrementPulsedInputCounter(_usbInputBitId input)
{
    if (input > lastCountedInput)
        return Fail(usbErrorParameter);
    return Tell(Request::DecrementPulsedInputCounter, input);
}

int RBaseImplementation::ReadPulsedInputCounter(_usbInputBitId input, unsigned char *counter)
{
    if (!counter)
        return Fail(usbErrorNullPointer);
    if (input > lastCountedInput)
        return Fail(usbErrorParameter);
    Response<1> response;
    if (!Ask(Request::ReadPulsedInputCounter, response, input))
        return 0;
    *counter = response.u8(0);
    return 1;
}

int RBaseImplementation::GetPulsedInputStatus(_usbInputBitId input, unsigned int *active, unsigned char *hopperByte)
{
    if (!active)
        return Fail(usbErrorNullPointer);
    ReleaseHopperCoinsStatus status;
    const int result = GetParallelHopperStatus(input, &status, hopperByte);
    if (result)
        *active = status == usbHopperActive ? 1 : 0;
    return result;
}

int RBaseImplementation::ReleaseParallelHopperCoins(_usbInputBitId input, unsigned char inputSetting,
                                                    ActiveState activeState, _usbOutputBitId hopperOutput,
                                                    unsigned short coinCount, unsigned char hopperSetting)
{
    return ReleaseParallelHopperCoinsEx(input, inputSetting, 0, activeState, hopperOutput, coinCount, hopperSetting);
}

int RBaseImplementation::ReleaseParallelHopperCoinsEx(_usbInputBitId input, unsigned char inputSetting,
                                                      unsigned char inputSettingEx, ActiveState activeState,
                                                      _usbOutputBitId hopperOutput, unsigned short coinCount,
                                                      unsigned char hopperSetting)
{
    if (input > lastCoinInput || hopperOutput > usbOutput37)
        return Fail(usbErrorParameter);
    return Tell(Request::ReleaseParallelHopperCoins, input, inputSetting, activeState, hopperOutput, high(coinCount),
                low(coinCount), hopperSetting, inputSettingEx);
}

int RBaseImplementation::GetParallelHopperStatus(_usbInputBitId input, ReleaseHopperCoinsStatus *status,
                                                 unsigned char *hopperByte)
{
    if (!status || !hopperByte)
        return Fail(usbErrorNullPointer);
    if (input > lastCountedInput)
        return Fail(usbErrorParameter);
    Response<2> response;
    if (!Ask(Request::GetParallelHopperStatus, response, input))
        return 0;
    *status = static_cast<ReleaseHopperCoinsStatus>(response.u8(0));
    *hopperByte = response.u8(1);
    return 1;
}

int RBaseImplementation::StopHopperCoinRelease(_usbInputBitId input)
{
    if (input > lastCoinInput)
        return Fail(usbErrorParameter);
    return Tell(Request::StopHopperCoinRelease, input);
}
