#include "tests/api/wire_table.h"

namespace tests
{

namespace
{

const ActiveState active = ActiveState(1);

usbRampTable ramp(unsigned char count)
{
    usbRampTable table = {};
    table.entryCount = count;
    for (unsigned char k = 0; k < 60; ++k)
        table.entries[k] = k;
    return table;
}

std::string countingText(int count)
{
    std::string text;
    for (int k = 0; k < count; ++k) {
        const unsigned char byte = static_cast<unsigned char>(k);
        text += " " + hex(&byte, 1);
    }
    return text;
}

}  // namespace

WireCases coinAndReelCases()
{
    const sim::Bytes reels = {1, 2, 3, 4, 5, 6, 0x01, 0x2C, 0, 5, 2, 0x80, 13, 14, 15, 16, 17, 18};
    const std::string r35Ramp = "89/1 02 3C" + countingText(60);
    WireCases cases = {
        call("ConfigurePulsedInput(3, 20)", "107/1 03 14 01 00", &U::ConfigurePulsedInput, usbInput3, 20, active)
            .onR20("107/1 03 14 01"),
        call("ConfigurePulsedInput(33): an R20 sends it", "error 8", &U::ConfigurePulsedInput, _usbInputBitId(33), 20,
             ActiveState(0x101))
            .onR20("107/1 21 14 01"),
        call("ConfigurePulsedInputEx(32)", "107/1 20 14 01 07", &U::ConfigurePulsedInputEx, usbInput32, 20, 7, active)
            .notOnR20(),
        call("ConfigurePulsedInputEx(33)", "error 8", &U::ConfigurePulsedInputEx, _usbInputBitId(33), 20, 7, active)
            .notOnR20(),
        call("BeginPulsedInputCheck(3)", "108/1 03 01", &U::BeginPulsedInputCheck, usbInput3),
        call("EndPulsedInputCheck(3)", "108/1 03 00", &U::EndPulsedInputCheck, usbInput3),
        call("ResetPulsedInputCounter(23)", "109/1 17", &U::ResetPulsedInputCounter, usbInput23),
        call("DecrementPulsedInputCounter(23)", "110/1 17", &U::DecrementPulsedInputCounter, usbInput23),
        call("BeginPulsedInputCheck(24)", "error 8", &U::BeginPulsedInputCheck, usbInput24),
        call("EndPulsedInputCheck(24)", "error 8", &U::EndPulsedInputCheck, usbInput24),
        call("ResetPulsedInputCounter(24)", "error 8", &U::ResetPulsedInputCounter, usbInput24),
        call("DecrementPulsedInputCounter(24)", "error 8", &U::DecrementPulsedInputCounter, usbInput24),
        call("ReadPulsedInputCounter(5)", "111/1 05", &U::ReadPulsedInputCounter, usbInput5, Result{200})
            .answered({{200}}),
        call("ReadPulsedInputCounter: the pointer comes first", "error 30", &U::ReadPulsedInputCounter, usbInput24,
             nullptr),
        call("ReadPulsedInputCounter(24)", "error 8", &U::ReadPulsedInputCounter, usbInput24, anywhere),
        call("ReleaseParallelHopperCoins", "112/1 05 14 01 25 01 2C 09 00", &U::ReleaseParallelHopperCoins, usbInput5,
             20, active, usbOutput37, 300, 9)
            .onR20("112/1 05 14 01 25 01 2C 09"),
        call("ReleaseParallelHopperCoins without such an output: an R20 sends it", "error 8",
             &U::ReleaseParallelHopperCoins, _usbInputBitId(33), 20, active, _usbOutputBitId(38), 300, 9)
            .onR20("112/1 21 14 01 26 01 2C 09"),
        call("ReleaseParallelHopperCoinsEx", "112/1 05 14 01 25 01 2C 09 07", &U::ReleaseParallelHopperCoinsEx,
             usbInput5, 20, 7, active, usbOutput37, 300, 9)
            .notOnR20(),
        call("ReleaseParallelHopperCoinsEx(input 33)", "error 8", &U::ReleaseParallelHopperCoinsEx, _usbInputBitId(33),
             20, 7, active, usbOutput37, 300, 9)
            .notOnR20(),
        call("ReleaseParallelHopperCoinsEx(output 38)", "error 8", &U::ReleaseParallelHopperCoinsEx, usbInput5, 20, 7,
             active, _usbOutputBitId(38), 300, 9)
            .notOnR20(),
        call("GetParallelHopperStatus(23)", "113/1 17", &U::GetParallelHopperStatus, usbInput23, Result{0x83},
             Result{7})
            .answered({{0x83, 7}}),
        call("GetParallelHopperStatus(24)", "error 8", &U::GetParallelHopperStatus, usbInput24, Result{0}, Result{0}),
        call("GetParallelHopperStatus: the pointers come first", "error 30", &U::GetParallelHopperStatus, usbInput24,
             nullptr, nullptr),
        call("GetPulsedInputStatus of 4", "113/1 17", &U::GetPulsedInputStatus, usbInput23, Result{1}, Result{5})
            .answered({{4, 5}}),
        call("GetPulsedInputStatus of 5", "113/1 17", &U::GetPulsedInputStatus, usbInput23, Result{0}, Result{5})
            .answered({{5, 5}}),
        call("GetPulsedInputStatus(null active)", "error 30", &U::GetPulsedInputStatus, usbInput0, nullptr, anywhere),
        call("StopHopperCoinRelease(32)", "124/1 20", &U::StopHopperCoinRelease, usbInput32).notOnR20(),
        call("StopHopperCoinRelease(33)", "error 8", &U::StopHopperCoinRelease, _usbInputBitId(33)).notOnR20(),

        call("ConfigureReels widens its setting", "86/1 03 00 C8 01", &U::ConfigureReels, 3, 200, 1),
        call("ConfigureReelsEx(3, 400, 1)", "86/1 03 01 90 01", &U::ConfigureReelsEx, 3, 400, 1),
        call("ConfigureReelsEx(4)", "error 8", &U::ConfigureReelsEx, 4, 0, 0),
        call("SpinReels(1, -1, 1000)", "87/1 01 FF 03 E8", &U::SpinReels, 1, 255, 1000),
        call("SpinReels does not check the reel", "87/1 07 00 00 00", &U::SpinReels, 7, 0, 0),
        call("SpinReels(mode 3)", "error 8", &U::SpinReels, 1, 3, 0),
        call("SpinReels(mode -3)", "error 8", &U::SpinReels, 1, 253, 0),
        call("SpinRampUp without entries", "88/1 00 00", &U::SpinRampUp, 0, ramp(0)),
        call("SpinRampUp with three entries", "88/1 01 03 00 01 02", &U::SpinRampUp, 1, ramp(3)),
        call("SpinRampDown with 60 entries", r35Ramp, &U::SpinRampDown, 2, ramp(60)),
        call("SpinRampUp(reel 3): the reel comes first", "error 16", &U::SpinRampUp, 3, ramp(61)),
        call("SpinRampDown(reel 3)", "error 16", &U::SpinRampDown, 3, ramp(1)),
        call("SpinRampDown with 61 entries", "error 8", &U::SpinRampDown, 2, ramp(61)),
        call("SetDutyCycle", "90/1 01 02 03", &U::SetDutyCycle, 1, 2, 3),
        call("ReelSynchroniseEnable", "91/1 C8", &U::ReelSynchroniseEnable, 200),
        call("GetReelStatusEx", "92/1", &U::GetReelStatusEx,
             Stored{"02 01 2C 01 0E 0D 04 03 05 00 10 0F 05 02 11 06 80 12"})
            .answered({reels}),
        call("GetReelStatus keeps the low bytes", "92/1", &U::GetReelStatus,
             Stored{"02 2C 0E 04 05 10 05 02 11 06 80 12"})
            .answered({reels}),
        call("GetReelStatusEx(null)", "error 30", &U::GetReelStatusEx, nullptr),
        call("GetReelStatus(null)", "error 30", &U::GetReelStatus, nullptr),
    };
    return cases;
}

}  // namespace tests
