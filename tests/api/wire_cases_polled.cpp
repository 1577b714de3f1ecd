#include "tests/api/wire_table.h"

#include <cmath>
#include <cstring>

namespace tests
{

namespace
{

WireCase hostTimeout(const char *name, double seconds, const std::string &expected, unsigned char slot = 2)
{
    return call(name, expected, &U::SetPolledHostTimeout, usbSerialPort1, slot, seconds);
}

CCTalkConfig ccTalk()
{
    CCTalkConfig c = {};
    c.slot = 2;
    c.optionA = 3;
    c.optionB = 4;
    c.optionC = 0xC0;
    c.timeMs = 1234;
    c.optionD = 0xD0;
    c.optionE = 0xE0;
    c.optionF = 0xF0;
    const unsigned char poll[] = {2, 0, 1, 254, 255};
    std::memcpy(c.message1, poll, sizeof poll);
    std::memcpy(c.message2, poll, sizeof poll);
    return c;
}

const std::string ccTalkStart = "103/3 02 03 04 01 01 05 ";

WireCase ccTalkRow(const char *name, const std::string &expected, const std::function<void(CCTalkConfig &)> &change,
                   _usbSerialPort port = usbSerialPort0, int timeAfter = 1234)
{
    return row(name, expected, [=](SorvaneUSB &usb) {
        CCTalkConfig c = ccTalk();
        change(c);
        const int result = usb.ConfigureCCTalkPort(port, &c);
        EXPECT_EQ(c.timeMs, timeAfter);
        return result;
    });
}

/// With a time of which the call may leave another.
WireCase ccTalkTime(const char *name, const std::string &expected, int timeMs, int timeAfter,
                    _usbSerialPort port = usbSerialPort0)
{
    return ccTalkRow(
        name, expected, [=](CCTalkConfig &c) { c.timeMs = timeMs; }, port, timeAfter);
}

WireCase rs232Row(const char *name, const std::string &expected, const std::function<void(RS232PollConfig &)> &change)
{
    return row(name, expected, [=](SorvaneUSB &usb) {
        RS232PollConfig c = {1, 2, 3, 0xC1, 100, 0xF7, 2, 3, 0x55, 0xD1, 0xE1, 0xF1, {9, 8, 1, 7}, {6, 5, 0}};
        change(c);
        return usb.ConfigureRS232Poll(usbSerialPort1, &c);
    });
}

template <class Message, class Status>
WireCase polledMessage(const char *name, const char *expected, unsigned char slot, Message message, Result length,
                       Status status)
{
    return call<_usbSerialPort, unsigned char, unsigned char *, unsigned long *, unsigned int *>(
        name, expected, &U::ReceivePolledMessage, usbSerialPort0, slot, message, length, status);
}

}  // namespace

WireCases polledHostCases()
{
    const std::string poll = "02 00 01 FE FF";
    const std::string twoPolls = "E0 D0 F0 C0 05 05 " + poll + " " + poll;
    sim::Bytes longPoll{2, 20, 1, 254, 255};
    longPoll.resize(25);
    const std::string twoLongPolls = " " + hex(longPoll.data(), 25) + " " + hex(longPoll.data(), 25);
    return {
        hostTimeout("SetPolledHostTimeout(0.3 s)", 0.3, "121/4 02 02"),
        hostTimeout("SetPolledHostTimeout(0.1 s)", 0.1, "121/4 02 01"),
        hostTimeout("SetPolledHostTimeout(1.2 s)", 1.2, "121/4 02 0B"),
        hostTimeout("SetPolledHostTimeout(25.4 s)", 25.4, "121/4 02 FD"),
        hostTimeout("SetPolledHostTimeout(25.5 s)", 25.5, "121/4 02 FF"),
        hostTimeout("SetPolledHostTimeout(0 s)", -0.0, "121/4 02 00"),
        hostTimeout("SetPolledHostTimeout(25.51 s)", 25.51, "error 8"),
        hostTimeout("SetPolledHostTimeout(-1 s)", -1, "error 8"),
        hostTimeout("SetPolledHostTimeout(NaN)", NAN, "error 8"),
        hostTimeout("SetPolledHostTimeout(slot 4)", 1, "error 8", 4),
        call("SetPolledHostTimeout(port 2)", "error 8", &U::SetPolledHostTimeout, port2, 0, 1),
        ccTalkRow("ConfigureCCTalkPort", ccTalkStart + "7B " + twoPolls, [](auto &) {}),
        ccTalkTime("ConfigureCCTalkPort clamps 2555 ms", ccTalkStart + "FF " + twoPolls, 2555, 2550).withBoard(),
        ccTalkTime("ConfigureCCTalkPort sends negative times as they are", ccTalkStart + "FF " + twoPolls, -19, -19),
        ccTalkRow("ConfigureCCTalkPort: a data length of 252 wraps to one byte",
                  ccTalkStart + "7B E0 D0 F0 C0 01 00 02",
                  [](auto &c) {
                      c.message1[1] = 252;
                      c.message2[1] = 251;
                  }),
        ccTalkTime("ConfigureCCTalkPort: port 2 is noticed after the clamp", "error 8", 3000, 2550, port2).withBoard(),
        ccTalkRow("ConfigureCCTalkPort: messages of 25 bytes", ccTalkStart + "7B E0 D0 F0 C0 19 19" + twoLongPolls,
                  [](auto &c) { c.message1[1] = c.message2[1] = 20; }),
        ccTalkRow("ConfigureCCTalkPort: a message1 of 26 bytes", "error 8", [](auto &c) { c.message1[1] = 21; }),
        ccTalkRow("ConfigureCCTalkPort: a message2 of 26 bytes", "error 8", [](auto &c) { c.message2[1] = 21; }),
        ccTalkRow("ConfigureCCTalkPort: slot 4", "error 8", [](auto &c) { c.slot = 4; }),
        ccTalkRow("ConfigureCCTalkPort: optionA 4", "error 8", [](auto &c) { c.optionA = 4; }),
        ccTalkRow("ConfigureCCTalkPort: optionB 5", "error 8", [](auto &c) { c.optionB = 5; }),
        call("ConfigureCCTalkPort(null)", "error 30", &U::ConfigureCCTalkPort, usbSerialPort0, nullptr),
        rs232Row("ConfigureRS232Poll", "103/4 01 02 03 F7 02 03 0A E1 D1 F1 C1 04 03 09 08 01 07 06 05 00",
                 [](auto &) {}),
        rs232Row("ConfigureRS232Poll: a length byte outside the message", "error 8",
                 [](auto &c) { c.lengthIndex = 25; }),
        rs232Row("ConfigureRS232Poll: a message of 26 bytes", "error 8", [](auto &c) { c.message1[2] = 23; }),
        call("ConfigureRS232Poll(null)", "error 30", &U::ConfigureRS232Poll, usbSerialPort0, nullptr),
        call("EmptyPolledBuffer", "104/3 03", &U::EmptyPolledBuffer, usbSerialPort0, 3),
        call("EmptyPolledBuffer(slot 4)", "error 8", &U::EmptyPolledBuffer, usbSerialPort0, 4),
        call("EmptyPolledBuffer(port 2)", "error 8", &U::EmptyPolledBuffer, port2, 0),
        call("DeletePolledMessage", "106/4 01", &U::DeletePolledMessage, usbSerialPort1, 1),
        call("DeletePolledMessage(slot 4)", "error 8", &U::DeletePolledMessage, usbSerialPort0, 4),
        call("DeletePolledMessage(port 2)", "error 8", &U::DeletePolledMessage, port2, 0),
        polledMessage("ReceivePolledMessage joins the parts", "105/3 01; 105/3 01", 1, Stored{"41 42 43 09"},
                      Result{3, 0}, Result{6})
            .withBoard()
            .answered({{0, 0x80, 0x41, 0x42}, {6, 0, 0x43}}),
        polledMessage("ReceivePolledMessage: slot 4", "error 8", 4, anywhere, Result{0}, Result{0}),
        polledMessage("ReceivePolledMessage(null status): the pointers come first", "error 30", 4, anywhere, Result{0},
                      nullptr),
    };
}

}  // namespace tests
