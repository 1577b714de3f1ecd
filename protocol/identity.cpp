#include "protocol/families.h"

namespace protocol
{

namespace
{

constexpr Field time = u32le("time", 0);
constexpr Field flagsA = bits("flagsA", 0, 1);
constexpr Field flagsB = bits("flagsB", 1, 1);
constexpr Field flag = u8("flag", 0);

constexpr Operation securityRows[] = {
    {20, clockPipe, onEveryModel, "SetClock", {time}},
    {21, clockPipe, onEveryModel, "GetClock", {}, {time}},
    {40, clockPipe, onEveryModel, "StartSecuritySwitchRead"},
    {41, clockPipe, onEveryModel, "NextSecuritySwitchRead", {}, {time, bits("switches", 4, 1)}},
    {42, clockPipe, onEveryModel, "ClearSecuritySwitches"},
    {64, clockPipe, onEveryModel, "ReadAndResetSecuritySwitchFlags", {}, {flagsA, flagsB}},
    {67, clockPipe, onEveryModel, "CachedReadAndResetSecuritySwitchFlags", {}, {flagsA, flagsB}},
    {68, clockPipe, onEveryModel, "GetRandomNumber", {}, {u16le("number", 0)}},
    {69, clockPipe, onEveryModel, "EnableRandomNumberGenerator", {u32le("setting", 0)}},
    {118, clockPipe, onEveryModel, "DisableRandomNumberGenerator"},
    {119, clockPipe, notOnR20, "ReadAndResetBatteryFailFlag", {}, {flag}},
    {220, clockPipe, onR35, "ReadAndResetRTCFailure", {}, {flag}},
    {221, clockPipe, onR35, "ReadClockAtBatteryFailure", {}, {time}},
};

constexpr Operation identityRows[] = {
    {6, eepromPipe, onEveryModel, "Get8051Version", {}, {text("version", 0)}},
    {44, clockPipe, onEveryModel, "GetPICVersion", {}, {text("version", 0)}},
    {63, clockPipe, onEveryModel, "GetPICSerialNumber", {}, {bytes("serialNumber", 0)}},
    {65, clockPipe, onEveryModel, "SetPICSerialNumber", {bytes("serialNumber", 0, 8)}},
    {120,
     clockPipe,
     notOnR20,
     "GetDallasSerialNumber",
     {},
     {bytes("serialNumber", 0, 8).noted("family code first; byte 7 is the 1-Wire CRC of the others")}},
};

}  // namespace

std::span<const Operation> securityOperations()
{
    return securityRows;
}

std::span<const Operation> identityOperations()
{
    return identityRows;
}

}  // namespace protocol
