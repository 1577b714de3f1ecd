#include "protocol/families.h"

namespace protocol
{

namespace
{

constexpr Field countedInput = u8("input", 0).upTo(23);
constexpr Field anyInput = u8("input", 0).upTo(32);
constexpr Field uncheckedInput = u8("input", 0).noted("the library checks no range");
constexpr Field inputSetting = u8("inputSetting", 1);
constexpr Field activeState = u8("activeState", 2);
constexpr Field hopperOutput = u8("hopperOutput", 3);
constexpr Field coinCount = u16be("coinCount", 4);
constexpr Field hopperSetting = u8("hopperSetting", 6);

constexpr Operation coinRows[] = {
    {107, ioPipe, onR20, "ConfigurePulsedInput", {uncheckedInput, inputSetting, activeState}},
    {107,
     ioPipe,
     notOnR20,
     "ConfigurePulsedInputEx",
     {anyInput, inputSetting, activeState, u8("inputSettingEx", 3)},
     {},
     {"ConfigurePulsedInput"}},
    {108, ioPipe, onEveryModel, "BeginPulsedInputCheck", {countedInput}, {}, {}, {1, {1}}},
    {108, ioPipe, onEveryModel, "EndPulsedInputCheck", {countedInput}, {}, {}, {1, {0}}},
    {109, ioPipe, onEveryModel, "ResetPulsedInputCounter", {countedInput}},
    {110, ioPipe, onEveryModel, "DecrementPulsedInputCounter", {countedInput}},
    {111, ioPipe, onEveryModel, "ReadPulsedInputCounter", {countedInput}, {u8("counter", 0)}},
    {112,
     ioPipe,
     onR20,
     "ReleaseParallelHopperCoins",
     {uncheckedInput, inputSetting, activeState, hopperOutput.noted("the library checks no range"), coinCount,
      hopperSetting}},
    {112,
     ioPipe,
     notOnR20,
     "ReleaseParallelHopperCoinsEx",
     {anyInput, inputSetting, activeState, hopperOutput.upTo(37), coinCount, hopperSetting, u8("inputSettingEx", 7)},
     {},
     {"ReleaseParallelHopperCoins"}},
    {113,
     ioPipe,
     onEveryModel,
     "GetParallelHopperStatus",
     {countedInput},
     {u8("status", 0).noted("4: the hopper is paying out"), u8("hopperByte", 1)},
     {"GetPulsedInputStatus"}},
    {124, ioPipe, notOnR20, "StopHopperCoinRelease", {anyInput}},
};

}  // namespace

std::span<const Operation> coinOperations()
{
    return coinRows;
}

}  // namespace protocol
