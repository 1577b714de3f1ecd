#include "tests/api/wire_table.h"

namespace tests
{

namespace
{

WireCase dallas(const char *name, sim::Bytes answer, unsigned long valid)
{
    return call<unsigned char *, unsigned char *>(name, "120/5", &U::GetDallasSerialNumber, anywhere, Result{valid})
        .answered({std::move(answer)})
        .notOnR20();
}

}  // namespace

WireCases identityCases()
{
    return {
        call("SetClock sends the low byte first", "20/5 78 56 34 12", &U::SetClock, 0x12345678),
        call("GetClock", "21/5", &U::GetClock, Result{0x92345678}).answered({{0x78, 0x56, 0x34, 0x92}}),
        call("GetClock(null)", "error 30", &U::GetClock, nullptr),
        call("StartSecuritySwitchRead", "40/5", &U::StartSecuritySwitchRead),
        call("NextSecuritySwitchRead", "41/5", &U::NextSecuritySwitchRead, Result{0x04030201}, Result{5})
            .answered({{1, 2, 3, 4, 5, 6}}),
        call("NextSecuritySwitchRead(time, null)", "error 30", &U::NextSecuritySwitchRead, anywhere, nullptr),
        call("ClearSecuritySwitches", "42/5", &U::ClearSecuritySwitches),
        call("ReadAndResetSecuritySwitchFlags", "64/5", &U::ReadAndResetSecuritySwitchFlags, Result{0x81}, Result{0x42})
            .answered({{0x81, 0x42}}),
        call("ReadAndResetSecuritySwitchFlags(null)", "error 30", &U::ReadAndResetSecuritySwitchFlags, nullptr,
             nullptr),
        call("CachedReadAndResetSecuritySwitchFlags", "67/5", &U::CachedReadAndResetSecuritySwitchFlags, Result{0x81},
             Result{0x42})
            .answered({{0x81, 0x42}}),
        call("CachedReadAndResetSecuritySwitchFlags(null)", "error 30", &U::CachedReadAndResetSecuritySwitchFlags,
             nullptr, nullptr),
        call("ReadAndResetBatteryFailFlag", "119/5", &U::ReadAndResetBatteryFailFlag, Result{0x81})
            .answered({{0x81}})
            .notOnR20(),
        call("ReadAndResetBatteryFailFlag(null)", "error 30", &U::ReadAndResetBatteryFailFlag, nullptr).notOnR20(),
        call("ReadAndResetRTCFailure", "220/5", &U::ReadAndResetRTCFailure, Result{0x81})
            .answered({{0x81}})
            .onlyOnR35(),
        call("ReadAndResetRTCFailure(null)", "error 30", &U::ReadAndResetRTCFailure, nullptr).onlyOnR35(),
        call("ReadClockAtBatteryFailure", "221/5", &U::ReadClockAtBatteryFailure, Result{0x92345678})
            .answered({{0x78, 0x56, 0x34, 0x92}})
            .onlyOnR35(),
        call("ReadClockAtBatteryFailure(null)", "error 30", &U::ReadClockAtBatteryFailure, nullptr).onlyOnR35(),

        call("EnableRandomNumberGenerator", "69/5 04 03 02 01", &U::EnableRandomNumberGenerator, 0x01020304),
        call("DisableRandomNumberGenerator", "118/5", &U::DisableRandomNumberGenerator),
        call("GetRandomNumber", "68/5", &U::GetRandomNumber, Result{0x1234}).answered({{0x34, 0x12}}),
        call("GetRandomNumber(null)", "error 30", &U::GetRandomNumber, nullptr),

        call<unsigned char *>("Get8051Version", "6/2", &U::Get8051Version, Stored{"01 02 03 04 09"})
            .answered({{1, 2, 3, 4}}),
        call<unsigned char *>("GetPICVersion", "44/5", &U::GetPICVersion, Stored{"01 02 03 04 09"})
            .answered({{1, 2, 3, 4}}),
        call<unsigned char *>("GetPICSerialNumber", "63/5", &U::GetPICSerialNumber, Stored{"01 02 03 04 09"})
            .answered({{1, 2, 3, 4}}),
        call<unsigned char *>("Get8051Version(null)", "error 30", &U::Get8051Version, nullptr),
        call<unsigned char *>("GetPICVersion(null)", "error 30", &U::GetPICVersion, nullptr),
        call<unsigned char *>("GetPICSerialNumber(null)", "error 30", &U::GetPICSerialNumber, nullptr),
        call("SetPICSerialNumber(null)", "error 30", &U::SetPICSerialNumber, nullptr),
        call("SetPICSerialNumber sends eight bytes", "65/5 01 02 03 04 05 06 07 08", &U::SetPICSerialNumber,
             sim::Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9}),
        dallas("GetDallasSerialNumber", {0x02, 0x1C, 0xB8, 0x01, 0, 0, 0, 0xA2}, 1),
        dallas("GetDallasSerialNumber with a wrong bit", {0x02, 0x1C, 0xB8, 0x01, 0, 0x10, 0, 0xA2}, 0),
        dallas("GetDallasSerialNumber of zeros", {0, 0, 0, 0, 0, 0, 0, 0}, 1),
        call<unsigned char *, unsigned char *>("GetDallasSerialNumber(null)", "error 30", &U::GetDallasSerialNumber,
                                               nullptr, nullptr)
            .notOnR20(),
    };
}

}  // namespace tests
