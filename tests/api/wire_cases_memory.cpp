#include "tests/api/wire_table.h"

namespace tests
{

namespace
{

WireCase spi(unsigned char sendBits, unsigned char receiveBits, const std::string &expected)
{
    sim::Bytes sent(20);
    sent[0] = 0x11;
    sent[1] = 0x22;
    return call<unsigned char, unsigned char *, unsigned char, unsigned char, unsigned char *>(
               "SendSPI(" + std::to_string(sendBits) + " bits, " + std::to_string(receiveBits) + " back)", expected,
               &U::SendSPI, sendBits, sent, 0x5A, receiveBits, Stored{"31 32 09"})
        .answered({{0x31, 0x32}});
}

WireCase sec(unsigned char dataLength, unsigned char replyLength, const std::string &expected)
{
    sim::Bytes data(17);
    data[0] = 1;
    data[1] = 2;
    using Byte = unsigned char;
    return call<Byte, Byte, Byte, Byte *, Byte, Byte, Byte *>(
               "SendSEC(" + std::to_string(dataLength) + " bytes, " + std::to_string(replyLength) + " back)", expected,
               &U::SendSEC, 16, 32, dataLength, data, 7, replyLength, Stored{"31 32 09"})
        .answered({{0x31, 0x32}});
}

WireCase recording(const char *name, const std::vector<unsigned int> &inputs, unsigned long address,
                   unsigned short length, const std::string &expected)
{
    std::vector<_usbInputBitId> ids;
    ids.reserve(inputs.size());
    for (const unsigned int input : inputs)
        ids.push_back(_usbInputBitId(input));
    return call(name, expected, &U::ConfigureRecordingInputs, ids, address, length).notOnR20();
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
        call("ConfigureRecordingInputs(null)", "error 30", &U::ConfigureRecordingInputs, nullptr, 0, 0).notOnR20(),
        call("StartRecordingInputs(10)", "126/1 00 0A", &U::StartRecordingInputs, 10).notOnR20(),
        call("StartRecordingInputs(15000)", "126/1 3A 98", &U::StartRecordingInputs, 15000).notOnR20(),
        call("StartRecordingInputs(9)", "error 8", &U::StartRecordingInputs, 9).notOnR20(),
        call("StartRecordingInputs(15001)", "error 8", &U::StartRecordingInputs, 15001).notOnR20(),
        call("GetRecordingStatus", "127/1", &U::GetRecordingStatus, Result{2}, Result{256}, Result{32})
            .answered({{2, 1, 0, 0, 0x20}})
            .notOnR20(),
        call("GetRecordingStatus(null)", "error 30", &U::GetRecordingStatus, nullptr, nullptr, nullptr).notOnR20(),
        call<unsigned char *, unsigned long, unsigned char *, unsigned long *>(
            "ReadDiagnosticData", "128/1 05 06 07", &U::ReadDiagnosticData, sim::Bytes{5, 6, 7}, 3,
            Stored{"01 02 03 04 05 06 07 09"}, Result{7})
            .answered({{1, 2, 3, 4, 5, 6, 7}})
            .notOnR20(),
        call<unsigned char *, unsigned long, unsigned char *, unsigned long *>(
            "ReadDiagnosticData(null)", "error 30", &U::ReadDiagnosticData, nullptr, 0, nullptr, nullptr)
            .notOnR20(),
        call("WriteDiagnosticData", "129/1 05 06 07", &U::WriteDiagnosticData, sim::Bytes{5, 6, 7}, 3).notOnR20(),
        call("WriteDiagnosticData(null)", "error 30", &U::WriteDiagnosticData, nullptr, 3).notOnR20(),
    };
}

}  // namespace

WireCases memoryCases()
{
    WireCases cases = recorderCases();
    const WireCases others = {
        row("ConfigureEEPROM sends the highest address high byte first", "3/2 40 02 7F FF 51",
            [](U &usb) { return usb.ConfigureEEPROM(&E24LC256); }),
        row("ConfigureEEPROM(null)", "error 30", [](U &usb) { return usb.ConfigureEEPROM(nullptr); }),
        // NOLINTNEXTLINE(modernize-use-nullptr): it is that spelling which has to find its form
        row("ConfigureEEPROM(NULL)", "error 30", [](U &usb) { return usb.ConfigureEEPROM(NULL); }),
        row("ConfigureEEPROM(null constant)", "error 30",
            [](U &usb) { return usb.ConfigureEEPROM(static_cast<const R20EEPROM *>(nullptr)); }),
        call("CheckEEPROM(null)", "error 30", &U::CheckEEPROM, nullptr),
        call("EnableSPI", "94/7", &U::EnableSPI),
        call("DisableSPI", "95/7", &U::DisableSPI),
        spi(12, 8, "96/7 0C 08 5A 11 22"),
        spi(1, 0, "96/7 01 00 5A 11"),
        spi(160, 160, "96/7 A0 A0 5A 11 22" + zeros(18)),
        spi(0, 8, "error 2"),
        spi(161, 8, "error 2"),
        spi(8, 161, "error 2"),
        row("SendSPI(null tx): the pointers come first", "error 30",
            [](auto &u) {
                unsigned char received[1];
                return u.SendSPI(0, nullptr, 0, 0, received);
            }),
        sec(2, 3, "96/7 30 38 07 10 20 02 01 02 35"),
        sec(16, 16, "96/7 A0 A0 07 10 20 10 01 02" + zeros(14) + " 43"),
        sec(0, 0, "96/7 20 20 07 10 20 00 30"),
        sec(17, 0, "error 2"),
        sec(0, 17, "error 2"),
        row("SendSEC(null rx): the pointers come first", "error 30",
            [](auto &u) {
                unsigned char data[1] = {};
                return u.SendSEC(1, 2, 17, data, 0, 17, nullptr);
            }),
    };
    cases.insert(cases.end(), others.begin(), others.end());
    return cases;
}

}  // namespace tests
