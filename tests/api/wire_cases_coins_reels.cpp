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

std::string counting(int count)
{
    std::string text;
    for (int k = 0; k < count; ++k) {
        const unsigned char byte = static_cast<unsigned char>(k);
        text += " " + hex(&byte, 1);
    }
    return text;
}

WireCase hopperStatus(unsigned int input, const char *expected)
{
    return row(
               "GetParallelHopperStatus(" + std::to_string(input) + ")",
               [input](SorvaneUSB &usb) {
                   ReleaseHopperCoinsStatus status = ReleaseHopperCoinsStatus(99);
                   unsigned char byte = 99;
                   const int result = usb.GetParallelHopperStatus(_usbInputBitId(input), &status, &byte);
                   EXPECT_EQ(static_cast<unsigned int>(status), result ? 0x83u : 99u);
                   EXPECT_EQ(byte, result ? 7 : 99);
                   return result;
               },
               expected)
        .answered({{0x83, 7}});
}

WireCase pulsedInputStatus(unsigned char statusByte, unsigned int expectedActive)
{
    return row(
               "GetPulsedInputStatus of status " + std::to_string(statusByte),
               [expectedActive](SorvaneUSB &usb) {
                   unsigned int isActive = 99;
                   unsigned char byte = 99;
                   const int result = usb.GetPulsedInputStatus(usbInput23, &isActive, &byte);
                   EXPECT_EQ(isActive, result ? expectedActive : 99);
                   EXPECT_EQ(byte, result ? 5 : 99);
                   return result;
               },
               "113/1 17")
        .answered({{statusByte, 5}});
}

}  // namespace

WireCases coinAndReelCases()
{
    const std::string r35Ramp = "89/1 02 3C" + counting(60);
    WireCases cases = {
        row(
            "ConfigurePulsedInput(3, 20)", [](auto &u) { return u.ConfigurePulsedInput(usbInput3, 20, active); },
            "107/1 03 14 01 00")
            .onR20("107/1 03 14 01"),
        row(
            "ConfigurePulsedInput(33): an R20 sends it",
            [](auto &u) { return u.ConfigurePulsedInput(_usbInputBitId(33), 20, ActiveState(0x101)); }, "error 8")
            .onR20("107/1 21 14 01"),
        row(
            "ConfigurePulsedInputEx(32)", [](auto &u) { return u.ConfigurePulsedInputEx(usbInput32, 20, 7, active); },
            "107/1 20 14 01 07")
            .onR20("error 25"),
        row(
            "ConfigurePulsedInputEx(33)",
            [](auto &u) { return u.ConfigurePulsedInputEx(_usbInputBitId(33), 20, 7, active); }, "error 8")
            .onR20("error 25"),
        row(
            "BeginPulsedInputCheck(3)", [](auto &u) { return u.BeginPulsedInputCheck(usbInput3); }, "108/1 03 01"),
        row(
            "EndPulsedInputCheck(3)", [](auto &u) { return u.EndPulsedInputCheck(usbInput3); }, "108/1 03 00"),
        row(
            "ResetPulsedInputCounter(23)", [](auto &u) { return u.ResetPulsedInputCounter(usbInput23); }, "109/1 17"),
        row(
            "DecrementPulsedInputCounter(23)", [](auto &u) { return u.DecrementPulsedInputCounter(usbInput23); },
            "110/1 17"),
        row(
            "BeginPulsedInputCheck(24)", [](auto &u) { return u.BeginPulsedInputCheck(usbInput24); }, "error 8"),
        row(
            "EndPulsedInputCheck(24)", [](auto &u) { return u.EndPulsedInputCheck(usbInput24); }, "error 8"),
        row(
            "ResetPulsedInputCounter(24)", [](auto &u) { return u.ResetPulsedInputCounter(usbInput24); }, "error 8"),
        row(
            "DecrementPulsedInputCounter(24)", [](auto &u) { return u.DecrementPulsedInputCounter(usbInput24); },
            "error 8"),
        row(
            "ReadPulsedInputCounter(5)",
            [](auto &u) {
                unsigned char counter = 9;
                const int result = u.ReadPulsedInputCounter(usbInput5, &counter);
                EXPECT_EQ(counter, result ? 200 : 9);
                return result;
            },
            "111/1 05")
            .answered({{200}}),
        row(
            "ReadPulsedInputCounter: the pointer comes first",
            [](auto &u) { return u.ReadPulsedInputCounter(usbInput24, nullptr); }, "error 30"),
        row(
            "ReadPulsedInputCounter(24)",
            [](auto &u) {
                unsigned char counter;
                return u.ReadPulsedInputCounter(usbInput24, &counter);
            },
            "error 8"),
        row(
            "ReleaseParallelHopperCoins",
            [](auto &u) { return u.ReleaseParallelHopperCoins(usbInput5, 20, active, usbOutput37, 300, 9); },
            "112/1 05 14 01 25 01 2C 09 00")
            .onR20("112/1 05 14 01 25 01 2C 09"),
        row(
            "ReleaseParallelHopperCoins without such an output: an R20 sends it",
            [](auto &u) {
                return u.ReleaseParallelHopperCoins(_usbInputBitId(33), 20, active, _usbOutputBitId(38), 300, 9);
            },
            "error 8")
            .onR20("112/1 21 14 01 26 01 2C 09"),
        row(
            "ReleaseParallelHopperCoinsEx",
            [](auto &u) { return u.ReleaseParallelHopperCoinsEx(usbInput5, 20, 7, active, usbOutput37, 300, 9); },
            "112/1 05 14 01 25 01 2C 09 07")
            .onR20("error 25"),
        row(
            "ReleaseParallelHopperCoinsEx(input 33)",
            [](auto &u) {
                return u.ReleaseParallelHopperCoinsEx(_usbInputBitId(33), 20, 7, active, usbOutput37, 300, 9);
            },
            "error 8")
            .onR20("error 25"),
        row(
            "ReleaseParallelHopperCoinsEx(output 38)",
            [](auto &u) {
                return u.ReleaseParallelHopperCoinsEx(usbInput5, 20, 7, active, _usbOutputBitId(38), 300, 9);
            },
            "error 8")
            .onR20("error 25"),
        hopperStatus(23, "113/1 17"),
        hopperStatus(24, "error 8"),
        row(
            "GetParallelHopperStatus: the pointers come first",
            [](auto &u) { return u.GetParallelHopperStatus(usbInput24, nullptr, nullptr); }, "error 30"),
        pulsedInputStatus(4, 1),
        pulsedInputStatus(5, 0),
        row(
            "GetPulsedInputStatus(null active)",
            [](auto &u) {
                unsigned char byte;
                return u.GetPulsedInputStatus(usbInput0, nullptr, &byte);
            },
            "error 30"),
        row(
            "StopHopperCoinRelease(32)", [](auto &u) { return u.StopHopperCoinRelease(usbInput32); }, "124/1 20")
            .onR20("error 25"),
        row(
            "StopHopperCoinRelease(33)", [](auto &u) { return u.StopHopperCoinRelease(_usbInputBitId(33)); }, "error 8")
            .onR20("error 25"),

        row(
            "ConfigureReels widens its setting", [](auto &u) { return u.ConfigureReels(3, 200, 1); },
            "86/1 03 00 C8 01"),
        row(
            "ConfigureReelsEx(3, 400, 1)", [](auto &u) { return u.ConfigureReelsEx(3, 400, 1); }, "86/1 03 01 90 01"),
        row(
            "ConfigureReelsEx(4)", [](auto &u) { return u.ConfigureReelsEx(4, 0, 0); }, "error 8"),
        row(
            "SpinReels(1, -1, 1000)", [](auto &u) { return u.SpinReels(1, 255, 1000); }, "87/1 01 FF 03 E8"),
        row(
            "SpinReels does not check the reel", [](auto &u) { return u.SpinReels(7, 0, 0); }, "87/1 07 00 00 00"),
        row(
            "SpinReels(mode 3)", [](auto &u) { return u.SpinReels(1, 3, 0); }, "error 8"),
        row(
            "SpinReels(mode -3)", [](auto &u) { return u.SpinReels(1, 253, 0); }, "error 8"),
        row(
            "SpinRampUp without entries", [](auto &u) { return u.SpinRampUp(0, ramp(0)); }, "88/1 00 00"),
        row(
            "SpinRampUp with three entries", [](auto &u) { return u.SpinRampUp(1, ramp(3)); }, "88/1 01 03 00 01 02"),
        row(
            "SpinRampDown with 60 entries", [](auto &u) { return u.SpinRampDown(2, ramp(60)); }, r35Ramp),
        row(
            "SpinRampUp(reel 3): the reel comes first", [](auto &u) { return u.SpinRampUp(3, ramp(61)); }, "error 16"),
        row(
            "SpinRampDown(reel 3)", [](auto &u) { return u.SpinRampDown(3, ramp(1)); }, "error 16"),
        row(
            "SpinRampDown with 61 entries", [](auto &u) { return u.SpinRampDown(2, ramp(61)); }, "error 8"),
        row(
            "SetDutyCycle", [](auto &u) { return u.SetDutyCycle(1, 2, 3); }, "90/1 01 02 03"),
        row(
            "ReelSynchroniseEnable", [](auto &u) { return u.ReelSynchroniseEnable(200); }, "91/1 C8"),
        row(
            "GetReelStatusEx",
            [](auto &u) {
                ReelStatusEx s = {};
                const int result = u.GetReelStatusEx(&s);
                EXPECT_EQ(s.first[0], result ? 0x0102 : 0);
                EXPECT_EQ(s.first[1], result ? 300 : 0);
                EXPECT_EQ(s.second[1], result ? 5 : 0);
                EXPECT_EQ(s.third[1], result ? 2 : 0);
                EXPECT_EQ(s.fourth[1], result ? 128 : 0);
                EXPECT_EQ(s.fourth[2], result ? 18 : 0);
                return result;
            },
            "92/1")
            .answered({{1, 2, 3, 4, 5, 6, 0x01, 0x2C, 0, 5, 2, 0x80, 13, 14, 15, 16, 17, 18}}),
        row(
            "GetReelStatus keeps the low bytes",
            [](auto &u) {
                usbReelStatus s = {};
                const int result = u.GetReelStatus(&s);
                EXPECT_EQ(hex(s.first, 12),
                          result ? "02 2C 0E 04 05 10 05 02 11 06 80 12" : "00 00 00 00 00 00 00 00 00 00 00 00");
                return result;
            },
            "92/1")
            .answered({{1, 2, 3, 4, 5, 6, 0x01, 0x2C, 0, 5, 2, 0x80, 13, 14, 15, 16, 17, 18}}),
        row(
            "GetReelStatusEx(null)", [](auto &u) { return u.GetReelStatusEx(nullptr); }, "error 30"),
        row(
            "GetReelStatus(null)", [](auto &u) { return u.GetReelStatus(nullptr); }, "error 30"),
    };
    return cases;
}

}  // namespace tests
