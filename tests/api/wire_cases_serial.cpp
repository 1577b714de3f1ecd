#include <cmath>
#include <cstring>

#include "tests/api/wire_table.h"

namespace tests
{

namespace
{

WireCase config(unsigned int port, unsigned int baud, unsigned char options, unsigned char format, int type,
                const std::string &expected)
{
    return row(
        "SetConfig(port " + std::to_string(port) + ", " + std::to_string(baud) + " baud, options " +
            std::to_string(options) + ", format " + std::to_string(format) + ", type " + std::to_string(type) + ")",
        [=](SorvaneUSB &usb) {
            _DCB settings = {baud, options, format};
            return usb.SetConfig(_usbSerialPort(port), &settings, _usbPortType(type));
        },
        expected);
}

WireCase timeout(const char *name, float seconds, const std::string &expected, unsigned char length = 2,
                 unsigned int port = 0)
{
    return row(
        name,
        [=](SorvaneUSB &usb) {
            unsigned char message[60] = {0xAA, 0xBB};
            return usb.SetTimeoutMessage(_usbSerialPort(port), message, length, seconds);
        },
        expected);
}

WireCase sas(std::string name, std::function<int(SorvaneUSB &)> call, const std::string &expected)
{
    return row(std::move(name), std::move(call), expected).onR20("error 25");
}

WireCases configurationCases()
{
    WireCases cases = {
        config(0, 9600, 0, 0, 0, "97/3 00 00 00 00 D9 01"),
        config(0, 9600, 0x0E, 1, 3, "97/3 03 02 03 01 D9 01"),
        config(0, 9600, 0xF5, 2, 1, "97/3 01 01 01 00 D9 01"),
        config(0, 9600, 0, 5, 0, "97/3 00 03 00 00 D9 01"),
        config(0, 9600, 0, 5, 2, "error 11"),
        config(0, 9600, 0, 7, 2, "97/3 02 00 00 00 D9 01"),
        config(0, 9600, 0, 0, 4, "error 11"),
        config(0, 9600, 0, 0, -1, "error 11"),
        config(2, 9600, 0, 0, 0, "error 11"),
        config(0, 9601, 0, 0, 0, "error 10"),
        row(
            "SetConfig(null)", [](auto &u) { return u.SetConfig(port2, nullptr, usbPortType0); }, "error 30"),
    };
    const struct {
        unsigned int baud;
        const char *port0;
        const char *port1;
    } divisors[] = {
        {110, nullptr, "BB CA"},   {300, nullptr, "78 EC"},   {600, nullptr, "3C F6"},   {1200, "98 00", "1F FB"},
        {2400, "64 01", "8F FD"},  {4800, "B2 01", "C8 FE"},  {9600, "D9 01", "64 FF"},  {14400, nullptr, "98 FF"},
        {19200, "EC 01", "B2 FF"}, {38400, "F6 01", "D8 FF"}, {57600, nullptr, "E6 FF"}, {62500, "FA 01", "E8 FF"},
    };
    for (const auto &d : divisors) {
        const std::string bytes = " 00 00 00 00 ";
        cases.push_back(config(0, d.baud, 0, 0, 0, d.port0 ? "97/3" + bytes + d.port0 : "error 10"));
        cases.push_back(config(1, d.baud, 0, 0, 0, "97/4" + bytes + d.port1));
    }
    return cases;
}

WireCases timeoutCases()
{
    return {
        timeout("SetTimeoutMessage(1.5 s)", 1.5F, "101/3 32 02 AA BB"),
        timeout("SetTimeoutMessage(0.1 s)", 0.1F, "101/3 03 02 AA BB"),
        timeout("SetTimeoutMessage(0 s)", 0.0F, "101/3 00 02 AA BB"),
        timeout("SetTimeoutMessage(0.03 s)", 0.03F, "101/3 00 02 AA BB"),  // the float lies below the double
        timeout("SetTimeoutMessage: the float below 7.65", 7.6499996F, "101/3 FE 02 AA BB"),
        timeout("SetTimeoutMessage: the float 7.65 lies above it", 7.65F, "error 8"),
        timeout("SetTimeoutMessage(-0.1 s)", -0.1F, "error 8"),
        timeout("SetTimeoutMessage(NaN)", NAN, "error 8"),
        timeout("SetTimeoutMessage: the length comes first", 99.0F, "error 7", 61),
        timeout("SetTimeoutMessage of no byte", 1.5F, "101/4 32 00", 0, 1),
        timeout("SetTimeoutMessage: port 2", 1.5F, "error 8", 2, 2),
        row(
            "SetTimeoutMessage(null) of no byte", [](auto &u) { return u.SetTimeoutMessage(port2, nullptr, 0, 1); },
            "error 30"),
    };
}

WireCases dataCases()
{
    return {
        row(
            "Send(port 1)",
            [](auto &u) {
                unsigned char data[] = {1, 2, 3};
                return u.Send(usbSerialPort1, data, 3);
            },
            "98/4 01 02 03"),
        row(
            "Send of no byte looks at no port",
            [](auto &u) {
                unsigned char data[1] = {};
                return u.Send(port2, data, 0);
            },
            ""),
        row(
            "Send(port 2)",
            [](auto &u) {
                unsigned char data[1] = {};
                return u.Send(port2, data, 1);
            },
            "error 8"),
        row(
            "Send(null)", [](auto &u) { return u.Send(port2, nullptr, 0); }, "error 30"),
        row(
            "Send9BitData sends the high byte first",
            [](auto &u) {
                unsigned short words[] = {0x01A5, 0x0002};
                return u.Send9BitData(usbSerialPort0, words, 2);
            },
            "98/3 01 A5 00 02"),
        row(
            "Send9BitData(port 2)",
            [](auto &u) {
                unsigned short words[] = {1};
                return u.Send9BitData(port2, words, 1);
            },
            "error 8"),
        row(
            "Send9BitData(null)", [](auto &u) { return u.Send9BitData(usbSerialPort0, nullptr, 0); }, "error 30"),
        row(
            "Receive(port 1) asks until nothing comes",
            [](auto &u) {
                unsigned char data[8] = {};
                unsigned long length = 99;
                const int result = u.Receive(usbSerialPort1, data, &length);
                EXPECT_EQ(hex(data, 4), result ? "01 02 03 00" : "00 00 00 00");
                EXPECT_EQ(length, result ? 3u : 0u);
                return result;
            },
            "99/4; 99/4; 99/4")
            .withBoard()
            .answered({{1, 2}, {3}}),
        row(
            "Receive(port 2) has set the count",
            [](auto &u) {
                unsigned char data[1];
                unsigned long length = 99;
                const int result = u.Receive(port2, data, &length);
                EXPECT_EQ(length, 0u);
                return result;
            },
            "error 8")
            .withBoard(),
        row(
            "Receive(null data)",
            [](auto &u) {
                unsigned long length;
                return u.Receive(usbSerialPort0, nullptr, &length);
            },
            "error 30"),
        row(
            "Receive9BitData drops an odd byte",
            [](auto &u) {
                unsigned short words[4] = {};
                unsigned long count = 99;
                const int result = u.Receive9BitData(usbSerialPort1, words, &count);
                EXPECT_EQ(count, result ? 2u : 0u);
                EXPECT_EQ(words[0], result ? 0x01A5 : 0);
                EXPECT_EQ(words[1], result ? 0x0102 : 0);
                return result;
            },
            "99/4; 99/4")
            .withBoard()
            .answered({{0x01, 0xA5, 0x01, 0x02, 0x77}}),
        row(
            "Receive9BitData(null count)",
            [](auto &u) {
                unsigned short words[1];
                return u.Receive9BitData(usbSerialPort0, words, nullptr);
            },
            "error 30"),
        row(
            "GetParityErrors",
            [](auto &u) {
                unsigned short count = 9;
                const int result = u.GetParityErrors(usbSerialPort0, &count);
                EXPECT_EQ(count, result ? 258 : 9);
                return result;
            },
            "100/3")
            .answered({{1, 2}}),
        row(
            "GetParityErrors(port 2)",
            [](auto &u) {
                unsigned short count;
                return u.GetParityErrors(port2, &count);
            },
            "error 8"),
        row(
            "GetParityErrors(null)", [](auto &u) { return u.GetParityErrors(port2, nullptr); }, "error 30"),
        row(
            "ReceiveByteWithTimestamp(null): the pointers come first",
            [](auto &u) { return u.ReceiveByteWithTimestamp(port2, nullptr, nullptr, nullptr); }, "error 30"),
        row(
            "ReceiveByteWithTimestamp9BitData(null)",
            [](auto &u) { return u.ReceiveByteWithTimestamp9BitData(port2, nullptr, nullptr, nullptr); }, "error 30"),
        row(
            "ReceiveByteWithTimestamp(port 2) with an empty buffer",
            [](auto &u) {
                unsigned char data, timestamp;
                unsigned int received;
                return u.ReceiveByteWithTimestamp(port2, &data, &timestamp, &received);
            },
            "error 8"),
    };
}

WireCases sasCases()
{
    return {
        sas(
            "SetSASMachineAddress(127)", [](auto &u) { return u.SetSASMachineAddress(usbSerialPort0, 127); },
            "122/3 7F"),
        sas(
            "SetSASMachineAddress(128)", [](auto &u) { return u.SetSASMachineAddress(usbSerialPort0, 128); },
            "error 8"),
        sas(
            "SetSASMachineAddress(port 2)", [](auto &u) { return u.SetSASMachineAddress(port2, 1); }, "error 8"),
        sas(
            "SetSASAutoReply", [](auto &u) { return u.SetSASAutoReply(usbSerialPort0, 0x1234, 9); }, "123/3 34 09"),
        sas(
            "SetSASAutoReply(port 2)", [](auto &u) { return u.SetSASAutoReply(port2, 0, 0); }, "error 8"),
        sas(
            "SetSASBusy(1, 1)", [](auto &u) { return u.SetSASBusy(usbSerialPort1, 1); }, "123/4 01 00"),
        sas(
            "SetSASBusy(port 2)", [](auto &u) { return u.SetSASBusy(port2, 1); }, "error 8"),
        sas(
            "GetSASMessageStatus(null)", [](auto &u) { return u.GetSASMessageStatus(port2, nullptr); }, "error 30"),
        row(
            "GetSASMessageStatus",
            [](auto &u) {
                unsigned int status = 9;
                const int result = u.GetSASMessageStatus(usbSerialPort1, &status);
                EXPECT_EQ(status, result ? 0x80u : 9u);
                return result;
            },
            "124/4")
            .answered({{0x80}})
            .onR20("error 25"),
        row(
            "GetSASMessageStatus(port 2)",
            [](auto &u) {
                unsigned int status;
                return u.GetSASMessageStatus(port2, &status);
            },
            "error 8")
            .onR20("error 25"),
    };
}

}  // namespace

WireCases serialCases()
{
    WireCases all;
    for (const auto &cases : {configurationCases(), timeoutCases(), dataCases(), sasCases()})
        all.insert(all.end(), cases.begin(), cases.end());
    return all;
}

}  // namespace tests
