#include "tests/api/wire_table.h"

#include <cmath>
#include <cstring>

namespace tests
{

namespace
{

WireCase config(unsigned int port, unsigned int baud, unsigned char options, unsigned char format, int type,
                const std::string &expected)
{
    return call("SetConfig(port " + std::to_string(port) + ", " + std::to_string(baud) + " baud, options " +
                    std::to_string(options) + ", format " + std::to_string(format) + ", type " + std::to_string(type) +
                    ")",
                expected, &U::SetConfig, port, std::vector{_DCB{baud, options, format}}, type);
}

WireCase timeout(const char *name, float seconds, const std::string &expected, unsigned char length = 2,
                 unsigned int port = 0)
{
    sim::Bytes message(60);
    message[0] = 0xAA;
    message[1] = 0xBB;
    return call(name, expected, &U::SetTimeoutMessage, port, message, length, seconds);
}

/// The forms without a capacity.
template <class Data, class... Arguments>
WireCase receive(const char *name, const char *expected,
                 int (SorvaneUSB::*operation)(_usbSerialPort, Data *, unsigned long *), Arguments... arguments)
{
    return call(name, expected, operation, arguments...);
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
        call("SetConfig(null)", "error 30", &U::SetConfig, port2, nullptr, usbPortType0),
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
    sim::Bytes longest{0xAA, 0xBB};
    longest.resize(60);
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
        timeout("SetTimeoutMessage of 60 bytes", 1.5F, "101/3 32 3C " + hex(longest.data(), longest.size()), 60),
        timeout("SetTimeoutMessage of no byte", 1.5F, "101/4 32 00", 0, 1),
        timeout("SetTimeoutMessage: port 2", 1.5F, "error 8", 2, 2),
        call("SetTimeoutMessage(null) of no byte", "error 30", &U::SetTimeoutMessage, port2, nullptr, 0, 1),
    };
}

WireCases dataCases()
{
    return {
        call("Send(port 1)", "98/4 01 02 03", &U::Send, usbSerialPort1, sim::Bytes{1, 2, 3}, 3),
        call("Send of no byte looks at no port", "", &U::Send, port2, anywhere, 0),
        call("Send(port 2)", "error 8", &U::Send, port2, anywhere, 1),
        call("Send(null)", "error 30", &U::Send, port2, nullptr, 0),
        call("Send9BitData sends the high byte first", "98/3 01 A5 00 02", &U::Send9BitData, usbSerialPort0,
             sim::Words{0x01A5, 0x0002}, 2),
        call("Send9BitData(port 2)", "error 8", &U::Send9BitData, port2, anywhere, 1),
        call("Send9BitData(null)", "error 30", &U::Send9BitData, usbSerialPort0, nullptr, 0),
        receive("Receive(port 1) asks until nothing comes", "99/4; 99/4; 99/4", &U::Receive, usbSerialPort1,
                Stored{"01 02 03 09"}, Result{3, 0})
            .withBoard()
            .answered({{1, 2}, {3}}),
        receive("Receive(port 2) has set the count", "error 8", &U::Receive, port2, anywhere, Result{0, 0}).withBoard(),
        receive("Receive(null data)", "error 30", &U::Receive, usbSerialPort0, nullptr, anywhere),
        receive("Receive9BitData drops an odd byte", "99/4; 99/4", &U::Receive9BitData, usbSerialPort1,
                Stored{"A5 01 02 01"}, Result{2, 0})
            .withBoard()
            .answered({{0x01, 0xA5, 0x01, 0x02, 0x77}}),
        receive("Receive9BitData(null count)", "error 30", &U::Receive9BitData, usbSerialPort0, anywhere, nullptr),
        call("GetParityErrors", "100/3", &U::GetParityErrors, usbSerialPort0, Result{258}).answered({{1, 2}}),
        call("GetParityErrors(port 2)", "error 8", &U::GetParityErrors, port2, anywhere),
        call("GetParityErrors(null)", "error 30", &U::GetParityErrors, port2, nullptr),
        call("ReceiveByteWithTimestamp(null): the pointers come first", "error 30", &U::ReceiveByteWithTimestamp, port2,
             nullptr, nullptr, nullptr),
        call("ReceiveByteWithTimestamp9BitData(null)", "error 30", &U::ReceiveByteWithTimestamp9BitData, port2, nullptr,
             nullptr, nullptr),
        call("ReceiveByteWithTimestamp(port 2) with an empty buffer", "error 8", &U::ReceiveByteWithTimestamp, port2,
             anywhere, anywhere, anywhere),
    };
}

WireCases sasCases()
{
    return {
        call("SetSASMachineAddress(127)", "122/3 7F", &U::SetSASMachineAddress, usbSerialPort0, 127).notOnR20(),
        call("SetSASMachineAddress(128)", "error 8", &U::SetSASMachineAddress, usbSerialPort0, 128).notOnR20(),
        call("SetSASMachineAddress(port 2)", "error 8", &U::SetSASMachineAddress, port2, 1).notOnR20(),
        call("SetSASAutoReply", "123/3 34 09", &U::SetSASAutoReply, usbSerialPort0, 0x1234, 9).notOnR20(),
        call("SetSASAutoReply(port 2)", "error 8", &U::SetSASAutoReply, port2, 0, 0).notOnR20(),
        call("SetSASBusy(1, 1)", "123/4 01 00", &U::SetSASBusy, usbSerialPort1, 1).notOnR20(),
        call("SetSASBusy(port 2)", "error 8", &U::SetSASBusy, port2, 1).notOnR20(),
        call("GetSASMessageStatus(null)", "error 30", &U::GetSASMessageStatus, port2, nullptr).notOnR20(),
        call("GetSASMessageStatus", "124/4", &U::GetSASMessageStatus, usbSerialPort1, Result{0x80})
            .answered({{0x80}})
            .notOnR20(),
        call("GetSASMessageStatus(port 2)", "error 8", &U::GetSASMessageStatus, port2, anywhere).notOnR20(),
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
