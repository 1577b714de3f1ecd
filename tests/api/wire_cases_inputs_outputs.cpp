#include "tests/api/wire_table.h"

namespace tests
{

namespace
{

usbOutput outputs(unsigned char b0, unsigned char b1, unsigned char b2, unsigned char b3, unsigned char b4)
{
    return {{b0, b1, b2, b3, b4}};
}

WireCase readsInputBit(unsigned int input, sim::Bytes answer, unsigned long expected)
{
    return call("GetInputBit(" + std::to_string(input) + ")", "75/1", &U::GetInputBit, input, Result{expected})
        .answered({std::move(answer)});
}

}  // namespace

WireCases inputAndOutputCases()
{
    const sim::Bytes fiveBytesAndTwo = {1, 2, 3, 4, 0x81, 6, 7};
    return {
        call<usbInput *>("GetInputs", "75/1", &U::GetInputs, Stored{"01 02 03 04 81 09"}).answered({fiveBytesAndTwo}),
        call("GetChangedInputs", "81/1", &U::GetChangedInputs, Stored{"01 02 03 04 81 09"}).answered({fiveBytesAndTwo}),
        call("GetRawInputs", "82/1", &U::GetRawInputs, Stored{"01 02 03 04 81 09"}).answered({fiveBytesAndTwo}),
        call<unsigned char *>("GetInputs into bytes, of which it fills five", "75/1", &U::GetInputs,
                              Stored{"01 02 00 00 00 09"})
            .answered({{1, 2}}),
        readsInputBit(7, {0x80, 0, 0, 0, 0}, 1),
        readsInputBit(8, {0xFF, 0xFE, 0, 0, 0}, 0),
        readsInputBit(32, {0, 0, 0, 0, 1}, 1),
        call<usbInput *>("GetInputs(null record)", "error 30", &U::GetInputs, nullptr),
        call<unsigned char *>("GetInputs(null bytes)", "error 30", &U::GetInputs, nullptr),
        call("GetChangedInputs(null)", "error 30", &U::GetChangedInputs, nullptr),
        call("GetRawInputs(null)", "error 30", &U::GetRawInputs, nullptr),
        call("GetInputBit: the pointer comes first", "error 30", &U::GetInputBit, _usbInputBitId(33), nullptr),
        call("GetInputBit(33)", "error 8", &U::GetInputBit, _usbInputBitId(33), anywhere),
        call("InputMultiplexing(0)", "114/1 00", &U::InputMultiplexing, usbInputMultiplexingOff),
        call("InputMultiplexing(1)", "114/1 01", &U::InputMultiplexing, usbInputMultiplexingOn),
        call("InputMultiplexing(2)", "error 8", &U::InputMultiplexing, usbInputMultiplexing(2)),
        call("InputMultiplexing(-1)", "error 8", &U::InputMultiplexing, usbInputMultiplexing(-1)),
        call("GetMultiplexedInputs(null)", "error 30", &U::GetMultiplexedInputs, nullptr),
        call("GetMultiplexedInputs", "115/1", &U::GetMultiplexedInputs,
             Stored{"0A 0B 0C 0D 0E 0F 10 11 12 13 14 15 16 09"})
            .answered({{10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22}}),

        call("SetOutputBit(0, 0)", "77/1 00 00 00 00 00 01 00 00 00 00", &U::SetOutputBit, usbOutput0, 0),
        call("SetOutputBit(12, 1)", "77/1 00 10 00 00 00 00 00 00 00 00", &U::SetOutputBit, usbOutput12, 1),
        call("SetOutputBit(37, 1)", "77/1 00 00 00 00 20 00 00 00 00 00", &U::SetOutputBit, usbOutput37, 1),
        call("SetOutputBit(38, 1)", "error 8", &U::SetOutputBit, _usbOutputBitId(38), 1),
        call("SetOutputBit(-1, 1)", "error 8", &U::SetOutputBit, _usbOutputBitId(-1), 1),
        call("SetOutputBit(5, 2)", "error 8", &U::SetOutputBit, usbOutput5, 2),
        call("SetOutputs drives every output", "77/1 FF 00 0F F0 3F 00 FF F0 0F C0", &U::SetOutputs,
             sim::Bytes{0xFF, 0x00, 0x0F, 0xF0, 0x3F}),
        call("SetOutputs(null)", "error 30", &U::SetOutputs, nullptr),
        call("ModifyOutputs sends on before off", "77/1 06 07 08 09 0A 01 02 03 04 05", &U::ModifyOutputs,
             std::vector{outputs(1, 2, 3, 4, 5)}, std::vector{outputs(6, 7, 8, 9, 10)}),
        row("SetOnPeriodOutputs+ModifyOutputs+SetOnPeriodOutputBit: an output that is in both sets is off",
            "83/1 00 00 00 00 00; 77/1 01 00 00 00 00 01 00 00 00 00; 83/1 02 00 00 00 00",
            [](auto &u) {
                usbOutput both = outputs(1, 0, 0, 0, 0);
                return u.SetOnPeriodOutputs(outputs(0, 0, 0, 0, 0)) && u.ModifyOutputs(&both, &both) &&
                       u.SetOnPeriodOutputBit(usbOutputByte0, 1, 1);
            }),
        call("ModifyOutputs(null, on)", "error 30", &U::ModifyOutputs, nullptr, anywhere),
        call("ModifyOutputs(off, null)", "error 30", &U::ModifyOutputs, anywhere, nullptr),
        call("SetOutputBrightness(10)", "85/1 0A", &U::SetOutputBrightness, 10),
        call("SetOutputBrightness(11)", "error 8", &U::SetOutputBrightness, 11),

        call("SetOnPeriodOutputs", "83/1 01 02 03 04 FF", &U::SetOnPeriodOutputs, outputs(1, 2, 3, 4, 0xFF)),
        call("SetOffPeriodOutputs", "84/1 01 02 03 04 FF", &U::SetOffPeriodOutputs, outputs(1, 2, 3, 4, 0xFF)),
        row("SetOnPeriodOutputBit sends the whole pattern",
            "83/1 01 00 00 00 00; 83/1 01 00 00 00 20; 83/1 00 00 00 00 20",
            [](auto &u) {
                return u.SetOnPeriodOutputs(outputs(1, 0, 0, 0, 0)) && u.SetOnPeriodOutputBit(usbOutputByte4, 5, 1) &&
                       u.SetOnPeriodOutputBit(usbOutputByte0, 0, 0);
            }),
        row("SetOffPeriodOutputBit sends the whole pattern", "84/1 01 00 00 00 00; 84/1 01 00 00 80 00",
            [](auto &u) {
                return u.SetOffPeriodOutputs(outputs(1, 0, 0, 0, 0)) && u.SetOffPeriodOutputBit(usbOutputByte3, 7, 1);
            }),
        row("SetOnPeriodOutputs+SetOffPeriodOutputs+SetOnPeriodOutputBit+SetOffPeriodOutputBit: a bit that is refused",
            "83/1 00 00 00 00 00; 84/1 00 00 00 00 00; 83/1 02 00 00 00 00; 84/1 02 00 00 00 00",
            [](auto &u) {
                return u.SetOnPeriodOutputs(outputs(0, 0, 0, 0, 0)) && u.SetOffPeriodOutputs(outputs(0, 0, 0, 0, 0)) &&
                       !u.SetOnPeriodOutputBit(usbOutputByte0, 0, 2) &&
                       !u.SetOffPeriodOutputBit(usbOutputByte0, 0, 2) && u.ClearErrors() &&
                       u.SetOnPeriodOutputBit(usbOutputByte0, 1, 1) && u.SetOffPeriodOutputBit(usbOutputByte0, 1, 1);
            }),
        call("SetOnPeriodOutputBit(4, 6, 1)", "error 8", &U::SetOnPeriodOutputBit, usbOutputByte4, 6, 1),
        call("SetOnPeriodOutputBit(0, 8, 1)", "error 8", &U::SetOnPeriodOutputBit, usbOutputByte0, 8, 1),
        call("SetOffPeriodOutputBit(5, 0, 1)", "error 8", &U::SetOffPeriodOutputBit, _usbOutputId(5), 0, 1),
        call("SetOffPeriodOutputBit(0, -1, 1)", "error 8", &U::SetOffPeriodOutputBit, usbOutputByte0, -1, 1),
        call("SetOffPeriodOutputBit(0, 0, 2)", "error 8", &U::SetOffPeriodOutputBit, usbOutputByte0, 0, 2),

        call("PulseOutput(31, 10): the value comes first", "78/1 0A 1F", &U::PulseOutput, 31, 10),
        call("PulseOutput(32, 10)", "error 8", &U::PulseOutput, 32, 10),
        call("PulseOffOutput(0, 255)", "79/1 FF 00", &U::PulseOffOutput, 0, 255),
        call("PulseOffOutput(32, 1)", "error 8", &U::PulseOffOutput, 32, 1),
        call("PulseOutputResult", "80/1", &U::PulseOutputResult, Result{3}, Result{128}, Result{255})
            .answered({{3, 0x80, 0xFF}}),
        call("PulseOutputResult(a, null, c)", "error 30", &U::PulseOutputResult, anywhere, nullptr, anywhere),
    };
}

}  // namespace tests
