#include "tests/api/wire_table.h"

namespace tests
{

namespace
{

WireCase flags(const char *name, int (SorvaneUSB::*read)(unsigned char *, unsigned char *), const char *expected)
{
    return row(
               name,
               [read](SorvaneUSB &usb) {
                   unsigned char a = 9, b = 9;
                   const int result = (usb.*read)(&a, &b);
                   EXPECT_EQ(a, result ? 0x81 : 9);
                   EXPECT_EQ(b, result ? 0x42 : 9);
                   return result;
               },
               expected)
        .answered({{0x81, 0x42}});
}

WireCase flag(const char *name, int (SorvaneUSB::*read)(unsigned char *), const char *expected)
{
    return row(
               name,
               [read](SorvaneUSB &usb) {
                   unsigned char value = 9;
                   const int result = (usb.*read)(&value);
                   EXPECT_EQ(value, result ? 0x81 : 9);
                   return result;
               },
               expected)
        .answered({{0x81}});
}

WireCase clockValue(const char *name, int (SorvaneUSB::*read)(unsigned long *), const char *expected)
{
    return row(
               name,
               [read](SorvaneUSB &usb) {
                   unsigned long time = 9;
                   const int result = (usb.*read)(&time);
                   EXPECT_EQ(time, result ? 0x92345678UL : 9UL);
                   return result;
               },
               expected)
        .answered({{0x78, 0x56, 0x34, 0x92}});
}

WireCase text(const char *name, int (SorvaneUSB::*read)(unsigned char *), const char *expected)
{
    return row(
               name,
               [read](SorvaneUSB &usb) {
                   unsigned char bytes[5] = {9, 9, 9, 9, 9};
                   const int result = (usb.*read)(bytes);
                   EXPECT_EQ(hex(bytes, 5), result ? "01 02 03 04 09" : "09 09 09 09 09");
                   return result;
               },
               expected)
        .answered({{1, 2, 3, 4}});
}

template <class... Args>
WireCase nullPointer(const char *name, int (SorvaneUSB::*call)(Args...), Args... args)
{
    return row(
        name, [=](SorvaneUSB &usb) { return (usb.*call)(args...); }, "error 30");
}

WireCase dallas(const char *name, sim::Bytes answer, int valid)
{
    return row(
               name,
               [valid](SorvaneUSB &usb) {
                   unsigned char number[8] = {};
                   unsigned char crcValid = 9;
                   const int result = usb.GetDallasSerialNumber(number, &crcValid);
                   EXPECT_EQ(crcValid, result ? valid : 9);
                   return result;
               },
               "120/5")
        .answered({std::move(answer)})
        .onR20("error 25");
}

}  // namespace

WireCases identityCases()
{
    using U = SorvaneUSB;
    return {
        row(
            "SetClock sends the low byte first", [](auto &u) { return u.SetClock(0x12345678); }, "20/5 78 56 34 12"),
        clockValue("GetClock", &U::GetClock, "21/5"),
        nullPointer<unsigned long *>("GetClock(null)", &U::GetClock, nullptr),
        row(
            "StartSecuritySwitchRead", [](auto &u) { return u.StartSecuritySwitchRead(); }, "40/5"),
        row(
            "NextSecuritySwitchRead",
            [](auto &u) {
                unsigned long time = 9;
                unsigned char switches = 9;
                const int result = u.NextSecuritySwitchRead(&time, &switches);
                EXPECT_EQ(time, result ? 0x04030201UL : 9UL);
                EXPECT_EQ(switches, result ? 5 : 9);
                return result;
            },
            "41/5")
            .answered({{1, 2, 3, 4, 5, 6}}),
        row(
            "NextSecuritySwitchRead(time, null)",
            [](auto &u) {
                unsigned long time;
                return u.NextSecuritySwitchRead(&time, nullptr);
            },
            "error 30"),
        row(
            "ClearSecuritySwitches", [](auto &u) { return u.ClearSecuritySwitches(); }, "42/5"),
        flags("ReadAndResetSecuritySwitchFlags", &U::ReadAndResetSecuritySwitchFlags, "64/5"),
        nullPointer<unsigned char *, unsigned char *>("ReadAndResetSecuritySwitchFlags(null)",
                                                      &U::ReadAndResetSecuritySwitchFlags, nullptr, nullptr),
        flags("CachedReadAndResetSecuritySwitchFlags", &U::CachedReadAndResetSecuritySwitchFlags, "67/5"),
        nullPointer<unsigned char *, unsigned char *>("CachedReadAndResetSecuritySwitchFlags(null)",
                                                      &U::CachedReadAndResetSecuritySwitchFlags, nullptr, nullptr),
        flag("ReadAndResetBatteryFailFlag", &U::ReadAndResetBatteryFailFlag, "119/5").onR20("error 25"),
        nullPointer<unsigned char *>("ReadAndResetBatteryFailFlag(null)", &U::ReadAndResetBatteryFailFlag, nullptr)
            .onR20("error 25"),
        flag("ReadAndResetRTCFailure", &U::ReadAndResetRTCFailure, "220/5").onR20("error 25").onR20s("error 26"),
        nullPointer<unsigned char *>("ReadAndResetRTCFailure(null)", &U::ReadAndResetRTCFailure, nullptr)
            .onR20("error 25")
            .onR20s("error 26"),
        clockValue("ReadClockAtBatteryFailure", &U::ReadClockAtBatteryFailure, "221/5")
            .onR20("error 25")
            .onR20s("error 26"),
        nullPointer<unsigned long *>("ReadClockAtBatteryFailure(null)", &U::ReadClockAtBatteryFailure, nullptr)
            .onR20("error 25")
            .onR20s("error 26"),

        row(
            "EnableRandomNumberGenerator", [](auto &u) { return u.EnableRandomNumberGenerator(0x01020304); },
            "69/5 04 03 02 01"),
        row(
            "DisableRandomNumberGenerator", [](auto &u) { return u.DisableRandomNumberGenerator(); }, "118/5"),
        row(
            "GetRandomNumber",
            [](auto &u) {
                unsigned short number = 9;
                const int result = u.GetRandomNumber(&number);
                EXPECT_EQ(number, result ? 0x1234 : 9);
                return result;
            },
            "68/5")
            .answered({{0x34, 0x12}}),
        nullPointer<unsigned short *>("GetRandomNumber(null)", &U::GetRandomNumber, nullptr),

        text("Get8051Version", &U::Get8051Version, "6/2"),
        text("GetPICVersion", &U::GetPICVersion, "44/5"),
        text("GetPICSerialNumber", &U::GetPICSerialNumber, "63/5"),
        nullPointer<unsigned char *>("Get8051Version(null)", &U::Get8051Version, nullptr),
        nullPointer<unsigned char *>("GetPICVersion(null)", &U::GetPICVersion, nullptr),
        nullPointer<unsigned char *>("GetPICSerialNumber(null)", &U::GetPICSerialNumber, nullptr),
        nullPointer<unsigned char *>("SetPICSerialNumber(null)", &U::SetPICSerialNumber, nullptr),
        row(
            "SetPICSerialNumber sends eight bytes",
            [](auto &u) {
                unsigned char number[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
                return u.SetPICSerialNumber(number);
            },
            "65/5 01 02 03 04 05 06 07 08"),
        dallas("GetDallasSerialNumber", {0x02, 0x1C, 0xB8, 0x01, 0, 0, 0, 0xA2}, 1),
        dallas("GetDallasSerialNumber with a wrong bit", {0x02, 0x1C, 0xB8, 0x01, 0, 0x10, 0, 0xA2}, 0),
        dallas("GetDallasSerialNumber of zeros", {0, 0, 0, 0, 0, 0, 0, 0}, 1),
        nullPointer<unsigned char *, unsigned char *>("GetDallasSerialNumber(null)", &U::GetDallasSerialNumber, nullptr,
                                                      nullptr)
            .onR20("error 25"),
    };
}

}  // namespace tests
