#include "protocol/families.h"

namespace protocol
{

namespace
{

constexpr Field inputs = bits("inputs", 0, 5).noted("input n is bit n % 8 of byte n / 8; 0 to 32 are inputs");

constexpr Field outputs(const char *name, unsigned char place, const char *note)
{
    return bits(name, place, 5).noted(note);
}

constexpr Field outputPattern =
    outputs("outputs", 0, "output n is bit n % 8 of byte n / 8; 0 to 37 are outputs; the whole pattern");

constexpr Operation inputAndOutputRows[] = {
    {75, ioPipe, onEveryModel, "GetInputs", {}, {inputs}, {"GetInputBit", "InitUSBBoard"}},
    {77,
     ioPipe,
     onEveryModel,
     "ModifyOutputs",
     {outputs("on", 0, "output n is bit n % 8 of byte n / 8; 0 to 37 are outputs"),
      outputs("off", 5, "laid out as `on`; outputs in neither stay as they are")},
     {},
     {"SetOutputBit", "SetOutputs"}},
    {78, ioPipe, onEveryModel, "PulseOutput", {u8("pulseValue", 0), u8("output", 1).upTo(31)}},
    {79, ioPipe, onEveryModel, "PulseOffOutput", {u8("pulseValue", 0), u8("output", 1).upTo(31)}},
    {80, ioPipe, onEveryModel, "PulseOutputResult", {}, {u8("resultA", 0), u8("resultB", 1), u8("resultC", 2)}},
    {81, ioPipe, onEveryModel, "GetChangedInputs", {}, {inputs}},
    {82, ioPipe, onEveryModel, "GetRawInputs", {}, {inputs}},
    {83, ioPipe, onEveryModel, "SetOnPeriodOutputs", {outputPattern}, {}, {"SetOnPeriodOutputBit"}},
    {84, ioPipe, onEveryModel, "SetOffPeriodOutputs", {outputPattern}, {}, {"SetOffPeriodOutputBit"}},
    {85, ioPipe, onEveryModel, "SetOutputBrightness", {u8("level", 0).upTo(10)}},
    {114, ioPipe, onEveryModel, "InputMultiplexing", {u8("mode", 0).upTo(1).noted("1: multiplexed inputs")}},
    {115,
     ioPipe,
     onEveryModel,
     "GetMultiplexedInputs",
     {},
     {u8("leadByte", 0), bytes("groups", 1, 12).noted("four groups of three bytes")}},
};

}  // namespace

std::span<const Operation> inputAndOutputOperations()
{
    return inputAndOutputRows;
}

}  // namespace protocol
