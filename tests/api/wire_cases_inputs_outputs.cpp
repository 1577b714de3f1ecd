#include "tests/api/wire_table.h"

namespace tests
{

namespace
{

template <class Record>
std::string bytesOf(const Record &record)
{
    return hex(reinterpret_cast<const unsigned char *>(&record), sizeof record);
}

usbOutput outputs(unsigned char b0, unsigned char b1, unsigned char b2, unsigned char b3, unsigned char b4)
{
    return {{b0, b1, b2, b3, b4}};
}

WireCase readsFiveBytes(const char *name, int (SorvaneUSB::*read)(usbInput *), const char *expected)
{
    return row(
               name,
               [read](SorvaneUSB &usb) {
                   usbInput inputs = {{9, 9, 9, 9, 9}};
                   const int result = (usb.*read)(&inputs);
                   EXPECT_EQ(bytesOf(inputs), result ? "01 02 03 04 81" : "09 09 09 09 09");
                   return result;
               },
               expected)
        .answered({{1, 2, 3, 4, 0x81, 6, 7}});
}

WireCase readsInputBit(unsigned int input, sim::Bytes answer, unsigned int expected)
{
    return row(
               "GetInputBit(" + std::to_string(input) + ")",
               [input, expected](SorvaneUSB &usb) {
                   unsigned int state = 77;
                   const int result = usb.GetInputBit(_usbInputBitId(input), &state);
                   EXPECT_EQ(state, result ? expected : 77);
                   return result;
               },
               "75/1")
        .answered({std::move(answer)});
}

}  // namespace

WireCases inputAndOutputCases()
{
    return {
        readsFiveBytes("GetInputs", &SorvaneUSB::GetInputs, "75/1"),
        readsFiveBytes("GetChangedInputs", &SorvaneUSB::GetChangedInputs, "81/1"),
        readsFiveBytes("GetRawInputs", &SorvaneUSB::GetRawInputs, "82/1"),
        row(
            "GetInputs into bytes, of which it fills five",
            [](SorvaneUSB &usb) {
                unsigned char bytes[6] = {9, 9, 9, 9, 9, 9};
                const int result = usb.GetInputs(bytes);
                EXPECT_EQ(hex(bytes, 6), result ? "01 02 00 00 00 09" : "09 09 09 09 09 09");
                return result;
            },
            "75/1")
            .answered({{1, 2}}),
        readsInputBit(7, {0x80, 0, 0, 0, 0}, 1),
        readsInputBit(8, {0xFF, 0xFE, 0, 0, 0}, 0),
        readsInputBit(32, {0, 0, 0, 0, 1}, 1),
        row(
            "GetInputs(null record)", [](auto &u) { return u.GetInputs(static_cast<usbInput *>(nullptr)); },
            "error 30"),
        row(
            "GetInputs(null bytes)", [](auto &u) { return u.GetInputs(static_cast<unsigned char *>(nullptr)); },
            "error 30"),
        row(
            "GetChangedInputs(null)", [](auto &u) { return u.GetChangedInputs(nullptr); }, "error 30"),
        row(
            "GetRawInputs(null)", [](auto &u) { return u.GetRawInputs(nullptr); }, "error 30"),
        row(
            "GetInputBit: the pointer comes first", [](auto &u) { return u.GetInputBit(_usbInputBitId(33), nullptr); },
            "error 30"),
        row(
            "GetInputBit(33)",
            [](auto &u) {
                unsigned int state;
                return u.GetInputBit(_usbInputBitId(33), &state);
            },
            "error 8"),
        row(
            "InputMultiplexing(0)", [](auto &u) { return u.InputMultiplexing(usbInputMultiplexingOff); }, "114/1 00"),
        row(
            "InputMultiplexing(1)", [](auto &u) { return u.InputMultiplexing(usbInputMultiplexingOn); }, "114/1 01"),
        row(
            "InputMultiplexing(2)", [](auto &u) { return u.InputMultiplexing(usbInputMultiplexing(2)); }, "error 8"),
        row(
            "InputMultiplexing(-1)", [](auto &u) { return u.InputMultiplexing(usbInputMultiplexing(-1)); }, "error 8"),
        row(
            "GetMultiplexedInputs(null)", [](auto &u) { return u.GetMultiplexedInputs(nullptr); }, "error 30"),
        row(
            "GetMultiplexedInputs",
            [](auto &u) {
                usbMultiplexedInput inputs = {};
                const int result = u.GetMultiplexedInputs(&inputs);
                EXPECT_EQ(inputs.leadByte, result ? 10 : 0);
                EXPECT_EQ(inputs.groups[1][0], result ? 14 : 0);
                EXPECT_EQ(inputs.groups[3][2], result ? 22 : 0);
                return result;
            },
            "115/1")
            .answered({{10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22}}),

        row(
            "SetOutputBit(0, 0)", [](auto &u) { return u.SetOutputBit(usbOutput0, 0); },
            "77/1 00 00 00 00 00 01 00 00 00 00"),
        row(
            "SetOutputBit(12, 1)", [](auto &u) { return u.SetOutputBit(usbOutput12, 1); },
            "77/1 00 10 00 00 00 00 00 00 00 00"),
        row(
            "SetOutputBit(37, 1)", [](auto &u) { return u.SetOutputBit(usbOutput37, 1); },
            "77/1 00 00 00 00 20 00 00 00 00 00"),
        row(
            "SetOutputBit(38, 1)", [](auto &u) { return u.SetOutputBit(_usbOutputBitId(38), 1); }, "error 8"),
        row(
            "SetOutputBit(-1, 1)", [](auto &u) { return u.SetOutputBit(_usbOutputBitId(-1), 1); }, "error 8"),
        row(
            "SetOutputBit(5, 2)", [](auto &u) { return u.SetOutputBit(usbOutput5, 2); }, "error 8"),
        row(
            "SetOutputs drives every output",
            [](auto &u) {
                unsigned char on[] = {0xFF, 0x00, 0x0F, 0xF0, 0x3F};
                return u.SetOutputs(on);
            },
            "77/1 FF 00 0F F0 3F 00 FF F0 0F C0"),
        row(
            "SetOutputs(null)", [](auto &u) { return u.SetOutputs(nullptr); }, "error 30"),
        row(
            "ModifyOutputs sends on before off",
            [](auto &u) {
                usbOutput off = outputs(1, 2, 3, 4, 5);
                usbOutput on = outputs(6, 7, 8, 9, 10);
                return u.ModifyOutputs(&off, &on);
            },
            "77/1 06 07 08 09 0A 01 02 03 04 05"),
        row(
            "ModifyOutputs(null, on)",
            [](auto &u) {
                usbOutput on = {};
                return u.ModifyOutputs(nullptr, &on);
            },
            "error 30"),
        row(
            "ModifyOutputs(off, null)",
            [](auto &u) {
                usbOutput off = {};
                return u.ModifyOutputs(&off, nullptr);
            },
            "error 30"),
        row(
            "SetOutputBrightness(10)", [](auto &u) { return u.SetOutputBrightness(10); }, "85/1 0A"),
        row(
            "SetOutputBrightness(11)", [](auto &u) { return u.SetOutputBrightness(11); }, "error 8"),

        row(
            "SetOnPeriodOutputs", [](auto &u) { return u.SetOnPeriodOutputs(outputs(1, 2, 3, 4, 0xFF)); },
            "83/1 01 02 03 04 FF"),
        row(
            "SetOffPeriodOutputs", [](auto &u) { return u.SetOffPeriodOutputs(outputs(1, 2, 3, 4, 0xFF)); },
            "84/1 01 02 03 04 FF"),
        row(
            "SetOnPeriodOutputBit sends the whole pattern",
            [](auto &u) {
                return u.SetOnPeriodOutputs(outputs(1, 0, 0, 0, 0)) && u.SetOnPeriodOutputBit(usbOutputByte4, 5, 1) &&
                       u.SetOnPeriodOutputBit(usbOutputByte0, 0, 0);
            },
            "83/1 01 00 00 00 00; 83/1 01 00 00 00 20; 83/1 00 00 00 00 20"),
        row(
            "SetOffPeriodOutputBit sends the whole pattern",
            [](auto &u) {
                return u.SetOffPeriodOutputs(outputs(1, 0, 0, 0, 0)) && u.SetOffPeriodOutputBit(usbOutputByte3, 7, 1);
            },
            "84/1 01 00 00 00 00; 84/1 01 00 00 80 00"),
        row(
            "SetOnPeriodOutputBit(4, 6, 1)", [](auto &u) { return u.SetOnPeriodOutputBit(usbOutputByte4, 6, 1); },
            "error 8"),
        row(
            "SetOnPeriodOutputBit(0, 8, 1)", [](auto &u) { return u.SetOnPeriodOutputBit(usbOutputByte0, 8, 1); },
            "error 8"),
        row(
            "SetOffPeriodOutputBit(5, 0, 1)", [](auto &u) { return u.SetOffPeriodOutputBit(_usbOutputId(5), 0, 1); },
            "error 8"),
        row(
            "SetOffPeriodOutputBit(0, -1, 1)", [](auto &u) { return u.SetOffPeriodOutputBit(usbOutputByte0, -1, 1); },
            "error 8"),
        row(
            "SetOffPeriodOutputBit(0, 0, 2)", [](auto &u) { return u.SetOffPeriodOutputBit(usbOutputByte0, 0, 2); },
            "error 8"),

        row(
            "PulseOutput(31, 10): the value comes first", [](auto &u) { return u.PulseOutput(31, 10); }, "78/1 0A 1F"),
        row(
            "PulseOutput(32, 10)", [](auto &u) { return u.PulseOutput(32, 10); }, "error 8"),
        row(
            "PulseOffOutput(0, 255)", [](auto &u) { return u.PulseOffOutput(0, 255); }, "79/1 FF 00"),
        row(
            "PulseOffOutput(32, 1)", [](auto &u) { return u.PulseOffOutput(32, 1); }, "error 8"),
        row(
            "PulseOutputResult",
            [](auto &u) {
                unsigned char a = 9;
                unsigned int b = 9, c = 9;
                const int result = u.PulseOutputResult(&a, &b, &c);
                EXPECT_EQ(a, result ? 3 : 9);
                EXPECT_EQ(b, result ? 128u : 9u);
                EXPECT_EQ(c, result ? 255u : 9u);
                return result;
            },
            "80/1")
            .answered({{3, 0x80, 0xFF}}),
        row(
            "PulseOutputResult(a, null, c)",
            [](auto &u) {
                unsigned char a;
                unsigned int c;
                return u.PulseOutputResult(&a, nullptr, &c);
            },
            "error 30"),
    };
}

}  // namespace tests
