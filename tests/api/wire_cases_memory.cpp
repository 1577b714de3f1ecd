#include "tests/api/wire_table.h"

namespace tests
{

namespace
{

WireCase spi(unsigned char sendBits, unsigned char receiveBits, const std::string &expected)
{
    return row(
               "SendSPI(" + std::to_string(sendBits) + " bits, " + std::to_string(receiveBits) + " back)",
               [=](SorvaneUSB &usb) {
                   unsigned char tx[20] = {0x11, 0x22};
                   unsigned char rx[3] = {9, 9, 9};
                   const int result = usb.SendSPI(sendBits, tx, 0x5A, receiveBits, rx);
                   EXPECT_EQ(hex(rx, 3), result ? "31 32 09" : "09 09 09");
                   return result;
               },
               expected)
        .answered({{0x31, 0x32}});
}

WireCase sec(unsigned char dataLength, unsigned char replyLength, const std::string &expected)
{
    return row(
               "SendSEC(" + std::to_string(dataLength) + " bytes, " + std::to_string(replyLength) + " back)",
               [=](SorvaneUSB &usb) {
                   unsigned char data[17] = {1, 2};
                   unsigned char rx[3] = {9, 9, 9};
                   const int result = usb.SendSEC(16, 32, dataLength, data, 7, replyLength, rx);
                   EXPECT_EQ(hex(rx, 3), result ? "31 32 09" : "09 09 09");
                   return result;
               },
               expected)
        .answered({{0x31, 0x32}});
}

WireCase recording(const char *name, const std::vector<unsigned int> &inputs, unsigned long address,
                   unsigned short length, const std::string &expected)
{
    return row(
               name,
               [=](SorvaneUSB &usb) {
                   _usbInputBitId ids[4];
                   for (std::size_t k = 0; k < 4; ++k)
                       ids[k] = _usbInputBitId(inputs[k]);
                   return usb.ConfigureRecordingInputs(ids, address, length);
               },
               expected)
        .onR20("error 25");
}

std::string zeros(int count)
{
    std::string text;
    for (int k = 0; k < count; ++k)
        text += " 00";
    return text;
}

WireCases recorderCases()
{
    return {
        recording("ConfigureRecordingInputs", {2, 255, 255, 255}, 0, 100, "125/1 02 FF FF FF 01 00 00 00 64"),
        recording("ConfigureRecordingInputs at 0x12345", {0, 23, 1, 255}, 0x12345, 0x203,
                  "125/1 00 17 01 FF 05 23 45 02 03"),
        recording("ConfigureRecordingInputs at the end", {2, 255, 255, 255}, 0x73FFE, 0,
                  "125/1 02 FF FF FF 1D 3F FE 00 00"),
        recording("ConfigureRecordingInputs of nothing", {255, 255, 255, 255}, 0, 1, "error 8"),
        recording("ConfigureRecordingInputs(24)", {2, 24, 255, 255}, 0, 1, "error 8"),
        recording("ConfigureRecordingInputs(254)", {2, 254, 255, 255}, 0, 1, "error 8"),
        recording("ConfigureRecordingInputs one past the end", {2, 255, 255, 255}, 0x73FFE, 1, "error 8"),
        recording("ConfigureRecordingInputs past the end", {2, 255, 255, 255}, 0x73FFF, 0, "error 8"),
        recording("ConfigureRecordingInputs at an address that would wrap", {2, 255, 255, 255}, ~0UL, 2, "error 8"),
        row(
            "ConfigureRecordingInputs(null)", [](auto &u) { return u.ConfigureRecordingInputs(nullptr, 0, 0); },
            "error 30")
            .onR20("error 25"),
        row(
            "StartRecordingInputs(10)", [](auto &u) { return u.StartRecordingInputs(10); }, "126/1 00 0A")
            .onR20("error 25"),
        row(
            "StartRecordingInputs(15000)", [](auto &u) { return u.StartRecordingInputs(15000); }, "126/1 3A 98")
            .onR20("error 25"),
        row(
            "StartRecordingInputs(9)", [](auto &u) { return u.StartRecordingInputs(9); }, "error 8")
            .onR20("error 25"),
        row(
            "StartRecordingInputs(15001)", [](auto &u) { return u.StartRecordingInputs(15001); }, "error 8")
            .onR20("error 25"),
        row(
            "GetRecordingStatus",
            [](auto &u) {
                RecordingStatus status = RecordingStatus(9);
                unsigned short a = 9, b = 9;
                const int result = u.GetRecordingStatus(&status, &a, &b);
                EXPECT_EQ(static_cast<unsigned int>(status), result ? 2u : 9u);
                EXPECT_EQ(a, result ? 256 : 9);
                EXPECT_EQ(b, result ? 32 : 9);
                return result;
            },
            "127/1")
            .answered({{2, 1, 0, 0, 0x20}})
            .onR20("error 25"),
        row(
            "GetRecordingStatus(null)", [](auto &u) { return u.GetRecordingStatus(nullptr, nullptr, nullptr); },
            "error 30")
            .onR20("error 25"),
        row(
            "ReadDiagnosticData",
            [](auto &u) {
                unsigned char request[] = {5, 6, 7};
                unsigned char reply[8] = {};
                unsigned long size = 99;
                const int result = u.ReadDiagnosticData(request, 3, reply, &size);
                EXPECT_EQ(size, result ? 7u : 99u);
                EXPECT_EQ(hex(reply, 8), result ? "01 02 03 04 05 06 07 00" : "00 00 00 00 00 00 00 00");
                return result;
            },
            "128/1 05 06 07")
            .answered({{1, 2, 3, 4, 5, 6, 7}})
            .onR20("error 25"),
        row(
            "ReadDiagnosticData(null)", [](auto &u) { return u.ReadDiagnosticData(nullptr, 0, nullptr, nullptr); },
            "error 30")
            .onR20("error 25"),
        row(
            "WriteDiagnosticData",
            [](auto &u) {
                unsigned char data[] = {5, 6, 7};
                return u.WriteDiagnosticData(data, 3);
            },
            "129/1 05 06 07")
            .onR20("error 25"),
        row(
            "WriteDiagnosticData(null)", [](auto &u) { return u.WriteDiagnosticData(nullptr, 3); }, "error 30")
            .onR20("error 25"),
    };
}

}  // namespace

WireCases memoryCases()
{
    WireCases cases = recorderCases();
    const WireCases others = {
        row(
            "ConfigureEEPROM sends the highest address high byte first",
            [](auto &u) { return u.ConfigureEEPROM(&E24LC256); }, "3/2 40 02 7F FF 51"),
        row(
            "ConfigureEEPROM(null)", [](auto &u) { return u.ConfigureEEPROM(static_cast<R20EEPROM *>(nullptr)); },
            "error 30"),
        row(
            "ConfigureEEPROM(null constant)",
            [](auto &u) { return u.ConfigureEEPROM(static_cast<const R20EEPROM *>(nullptr)); }, "error 30"),
        row(
            "CheckEEPROM(null)", [](auto &u) { return u.CheckEEPROM(nullptr); }, "error 30"),
        row(
            "EnableSPI", [](auto &u) { return u.EnableSPI(); }, "94/7"),
        row(
            "DisableSPI", [](auto &u) { return u.DisableSPI(); }, "95/7"),
        spi(12, 8, "96/7 0C 08 5A 11 22"),
        spi(1, 0, "96/7 01 00 5A 11"),
        spi(160, 160, "96/7 A0 A0 5A 11 22" + zeros(18)),
        spi(0, 8, "error 2"),
        spi(161, 8, "error 2"),
        spi(8, 161, "error 2"),
        row(
            "SendSPI(null tx): the pointers come first",
            [](auto &u) {
                unsigned char rx[1];
                return u.SendSPI(0, nullptr, 0, 0, rx);
            },
            "error 30"),
        sec(2, 3, "96/7 30 38 07 10 20 02 01 02 35"),
        sec(16, 16, "96/7 A0 A0 07 10 20 10 01 02" + zeros(14) + " 43"),
        sec(0, 0, "96/7 20 20 07 10 20 00 30"),
        sec(17, 0, "error 2"),
        sec(0, 17, "error 2"),
        row(
            "SendSEC(null rx): the pointers come first",
            [](auto &u) {
                unsigned char data[1] = {};
                return u.SendSEC(1, 2, 17, data, 0, 17, nullptr);
            },
            "error 30"),
    };
    cases.insert(cases.end(), others.begin(), others.end());
    return cases;
}

}  // namespace tests
