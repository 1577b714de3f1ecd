// The description of the protocol, held against the bytes of the wire table.
#include "protocol/decode.h"
#include "protocol/document.h"
#include "protocol/families.h"
#include "tests/api/wire_table.h"

#include <fstream>
#include <set>
#include <sstream>

namespace tests
{

namespace
{

using protocol::Model;
using protocol::Outcome;

sim::Bytes bytesOf(std::istream &words)
{
    sim::Bytes bytes;
    for (std::string word; words >> word;)
        bytes.push_back(static_cast<unsigned char>(std::stoul(word, nullptr, 16)));
    return bytes;
}

/// "78/1 0A 1F" and what came back, decoded.
protocol::Decoded decode(Model model, const std::string &wire, const std::string &answered = "",
                         Outcome outcome = Outcome::Success, int status = 0)
{
    std::istringstream words(wire);
    std::istringstream answerWords(answered);
    unsigned int request = 0;
    char slash = 0;
    int pipe = 0;
    words >> request >> slash >> pipe;
    const sim::Bytes payload = bytesOf(words);
    const sim::Bytes answer = bytesOf(answerWords);
    return protocol::decode({model, static_cast<unsigned char>(request), pipe, payload, outcome, status, answer});
}

std::vector<std::string> exchangesOf(const WireCase &row, Model model)
{
    std::vector<std::string> exchanges;
    std::istringstream expected(row.expected[static_cast<int>(model) - 1]);
    for (std::string exchange; std::getline(expected >> std::ws, exchange, ';');)
        exchanges.push_back(exchange);
    return exchanges.empty() || exchanges[0].rfind("error ", 0) == 0 ? std::vector<std::string>() : exchanges;
}

struct Line {
    const char *wire;
    const char *answer;
    const char *line;
    Model model = Model::R35;
};

constexpr Line linesOfTheTable[] = {
    {"75/1", "80 00 00 00 01", "GetInputs() = inputs 7 32"},
    {"77/1 06 07 08 09 0A 01 02 03 04 05", "",
     "ModifyOutputs(on=1 2 8 9 10 19 24 27 33 35, off=0 9 16 17 26 32 34) = ok"},
    {"77/1 00 00 00 00 20 00 00 00 00 00", "", "ModifyOutputs(on=37, off=none) = ok"},
    {"78/1 0A 1F", "", "PulseOutput(pulseValue=10, output=31) = ok"},
    {"79/1 FF 00", "", "PulseOffOutput(pulseValue=255, output=0) = ok"},
    {"80/1", "03 80 FF", "PulseOutputResult() = resultA 3, resultB 128, resultC 255"},
    {"81/1", "01 00 00 00 00", "GetChangedInputs() = inputs 0"},
    {"82/1", "00 00 00 00 00", "GetRawInputs() = inputs none"},
    {"83/1 01 00 00 00 20", "", "SetOnPeriodOutputs(outputs=0 37) = ok"},
    {"84/1 01 00 00 80 00", "", "SetOffPeriodOutputs(outputs=0 31) = ok"},
    {"85/1 0A", "", "SetOutputBrightness(level=10) = ok"},
    {"114/1 01", "", "InputMultiplexing(mode=1) = ok"},
    {"115/1", "0A 0B 0C 0D 0E 0F 10 11 12 13 14 15 16",
     "GetMultiplexedInputs() = leadByte 10, groups 0B 0C 0D 0E 0F 10 11 12 13 14 15 16"},

    {"107/1 03 14 01", "", "ConfigurePulsedInput(input=3, inputSetting=20, activeState=1) = ok", Model::R20},
    {"107/1 20 14 01 07", "",
     "ConfigurePulsedInputEx(input=32, inputSetting=20, activeState=1, inputSettingEx=7) = ok"},
    {"108/1 03 01", "", "BeginPulsedInputCheck(input=3) = ok"},
    {"108/1 03 00", "", "EndPulsedInputCheck(input=3) = ok"},
    {"109/1 17", "", "ResetPulsedInputCounter(input=23) = ok"},
    {"110/1 17", "", "DecrementPulsedInputCounter(input=23) = ok"},
    {"111/1 05", "C8", "ReadPulsedInputCounter(input=5) = counter 200"},
    {"112/1 05 14 01 25 01 2C 09", "",
     "ReleaseParallelHopperCoins(input=5, inputSetting=20, activeState=1, hopperOutput=37, coinCount=300, "
     "hopperSetting=9) = ok",
     Model::R20},
    {"112/1 05 14 01 25 01 2C 09 07", "",
     "ReleaseParallelHopperCoinsEx(input=5, inputSetting=20, activeState=1, hopperOutput=37, coinCount=300, "
     "hopperSetting=9, inputSettingEx=7) = ok",
     Model::R20s},
    {"113/1 17", "83 07", "GetParallelHopperStatus(input=23) = status 131, hopperByte 7"},
    {"124/1 20", "", "StopHopperCoinRelease(input=32) = ok"},

    {"86/1 03 01 90 01", "", "ConfigureReelsEx(reels=3, reelSetting=400, reelOption=1) = ok"},
    {"87/1 01 FF 03 E8", "", "SpinReels(reel=1, spinMode=255, steps=1000) = ok"},
    {"88/1 01 03 00 01 02", "", "SpinRampUp(reel=1, entryCount=3, entries=00 01 02) = ok"},
    {"90/1 01 02 03", "", "SetDutyCycle(dutyA=1, dutyB=2, dutyC=3) = ok"},
    {"91/1 C8", "", "ReelSynchroniseEnable(enable=200) = ok"},
    {"92/1", "01 02 03 04 05 06 01 2C 00 05 02 80 0D 0E 0F 10 11 12",
     "GetReelStatusEx() = first 258 300 3342, second 772 5 3856, third 5 2 17, fourth 6 128 18"},

    {"125/1 00 17 01 FF 05 23 45 02 03", "",
     "ConfigureRecordingInputs(inputs=0 23 1 255, page=5, offset=9029, recordLength=515) = ok"},
    {"126/1 3A 98", "", "StartRecordingInputs(startValue=15000) = ok"},
    {"127/1", "02 01 00 00 20", "GetRecordingStatus() = status 2, valueA 256, valueB 32"},
    {"128/1 05 06 07", "01 02", "ReadDiagnosticData(requestData=05 06 07) = reply 01 02"},
    {"129/1 05 06 07", "", "WriteDiagnosticData(diagnosticData=05 06 07) = ok"},

    {"97/3 03 02 03 01 D9 01", "", "SetConfig(port=0, type=3, format=2, options2to3=3, option1=1, baudRate=9600) = ok"},
    {"97/4 00 00 00 00 BB CA", "", "SetConfig(port=1, type=0, format=0, options2to3=0, option1=0, baudRate=110) = ok"},
    {"98/4 01 02 03", "", "Send(port=1, data=01 02 03) = ok"},
    {"99/4", "41 20 22", "Receive(port=1) = data \"A \\\"\""},
    {"100/3", "01 02", "GetParityErrors(port=0) = count 258"},
    {"101/3 32 02 AA BB", "", "SetTimeoutMessage(port=0, time=1500ms, length=2, message=AA BB) = ok"},
    {"103/3 02 03 04 01 01 05 7B E0 D0 F0 C0 05 05 02 00 01 FE FF 02 00 01 FE FF", "",
     "ConfigureCCTalkPort(port=0, slot=2, optionA=3, optionB=4, time=1230ms, optionE=224, optionD=208, optionF=240, "
     "optionC=192, length1=5, length2=5, message1=02 00 01 FE FF, message2=02 00 01 FE FF) = ok"},
    {"103/4 01 02 03 F7 02 03 0A E1 D1 F1 C1 04 03 09 08 01 07 06 05 00", "",
     "ConfigureRS232Poll(port=1, slot=1, optionA=2, optionB=3, framing=247, lengthIndex=2, lengthExtra=3, time=100ms, "
     "optionE=225, optionD=209, optionF=241, optionC=193, length1=4, length2=3, message1=09 08 01 07, "
     "message2=06 05 00) = ok"},
    {"104/3 03", "", "EmptyPolledBuffer(port=0, slot=3) = ok"},
    {"105/3 01", "00 01 41 42", "ReceivePolledMessage(port=0, slot=1) = status 0, more 1, message \"AB\""},
    {"106/4 01", "", "DeletePolledMessage(port=1, slot=1) = ok"},
    {"121/4 02 0B", "", "SetPolledHostTimeout(port=1, slot=2, time=1100ms) = ok"},
    {"122/3 7F", "", "SetSASMachineAddress(port=0, address=127) = ok"},
    {"123/3 34 09", "", "SetSASAutoReply(port=0, reply=52, value=9) = ok"},
    {"124/4", "80", "GetSASMessageStatus(port=1) = status 128"},

    {"3/2 40 02 7F FF 51", "", "ConfigureEEPROM(pageSize=64, addressBytes=2, maxAddress=32767, busAddress=81) = ok"},
    {"94/7", "", "EnableSPI() = ok"},
    {"95/7", "", "DisableSPI() = ok"},
    {"96/7 0C 08 5A 11 22", "31 32", "SendSPI(sendBits=12, receiveBits=8, spiOption=90, txData=11 22) = rxData 31 32"},
    {"20/5 78 56 34 12", "", "SetClock(time=305419896) = ok"},
    {"21/5", "D2 04 00 80", "GetClock() = time 2147484882"},
    {"40/5", "", "StartSecuritySwitchRead() = ok"},
    {"41/5", "01 02 00 00 05", "NextSecuritySwitchRead() = time 513, switches 0 2"},
    {"42/5", "", "ClearSecuritySwitches() = ok"},
    {"64/5", "81 42", "ReadAndResetSecuritySwitchFlags() = flagsA 0 7, flagsB 1 6"},
    {"67/5", "81 42", "CachedReadAndResetSecuritySwitchFlags() = flagsA 0 7, flagsB 1 6"},
    {"68/5", "34 12", "GetRandomNumber() = number 4660"},
    {"69/5 04 03 02 01", "", "EnableRandomNumberGenerator(setting=16909060) = ok"},
    {"118/5", "", "DisableRandomNumberGenerator() = ok"},
    {"119/5", "81", "ReadAndResetBatteryFailFlag() = flag 129"},
    {"220/5", "81", "ReadAndResetRTCFailure() = flag 129"},
    {"221/5", "78 56 34 92", "ReadClockAtBatteryFailure() = time 2452903544"},
    {"6/2", "56 31", "Get8051Version() = version \"V1\""},
    {"44/5", "01 02", "GetPICVersion() = version 01 02"},
    {"63/5", "01 02 03", "GetPICSerialNumber() = serialNumber 01 02 03"},
    {"65/5 01 02 03 04 05 06 07 08", "", "SetPICSerialNumber(serialNumber=01 02 03 04 05 06 07 08) = ok"},
    {"120/5", "02 1C B8 01 00 00 00 A2", "GetDallasSerialNumber() = serialNumber 02 1C B8 01 00 00 00 A2"},
};

/// Those that the wire table leaves to the tests of whole transfers, and a long ramp.
constexpr Line otherLines[] = {
    {"89/1 02 01 07", "", "SpinRampDown(reel=2, entryCount=1, entries=07) = ok"},
    {"99/3 07", "", "Receive(port=0, messageId=7) = data \"\""},
    {"102/3", "D1 01 D2", "ReceiveByteWithTimestamp(port=0) = batch D1 01 D2"},
    {"4/2 03 64 01 0A 0B 0C", "", "WriteEEPROM(length=3, address=356, data=0A 0B 0C) = ok"},
    {"5/2 3A 64 01", "0A", "ReadEEPROM(length=58, address=356) = data 0A"},
    {"70/6 02 FE FF", "", "ReadSRAM(length=2, address=65534) = data none", Model::R20},
    {"71/6 01 00 3E 02", "", "WriteSRAM(length=1, address=15872, data=02) = ok", Model::R20},
    {"116/6 FC 00 40 FD 3F", "09", "ReadSRAM(length=252, page=64, offset=16381) = data 09"},
    {"117/6 01 00 0D 37 01 02", "", "WriteSRAM(length=1, page=13, offset=311, data=02) = ok"},
    {"72/6", "", "BeginFirmware() = ok"},
    {"73/6", "", "EndFirmware() = ok"},
    {"74/6", "01", "FirmwareRuns() = runs 1"},

    // Not laid out as described: nothing is left out.
    {"85/1", "", "SetOutputBrightness(payload=none) = ok"},
    {"85/1 01 02", "09", "SetOutputBrightness(payload=01 02) = answer 09"},
    {"21/5", "01 02 03", "GetClock() = answer 01 02 03"},
    {"88/1 01 03 00 01", "", "SpinRampUp(payload=01 03 00 01) = ok"},
    {"97/4 00 00 00 00 D9 01", "", "SetConfig(port=1, payload=00 00 00 00 D9 01) = ok"},
    {"108/1 03 02", "", "request 108 on pipe 1(payload=03 02) = ok"},
    {"117/6 00", "09", "request 117 on pipe 6(payload=00) = answer 09", Model::R20},
    {"220/5", "", "request 220 on pipe 5() = ok", Model::R20s},
};

TEST(WireLines, TellEachOperationWithItsArgumentsAndResults)
{
    std::set<const protocol::Operation *> told;
    const auto tell = [&](const Line &expected) {
        const protocol::Decoded decoded = decode(expected.model, expected.wire, expected.answer);
        EXPECT_EQ(line(decoded), expected.line);
        if (decoded.asDescribed)
            told.insert(decoded.operation);
    };
    std::set<std::string> table[4];
    for (const WireCase &row : everyWireCase())
        for (const Model model : {Model::R20, Model::R20s, Model::R35})
            for (const std::string &exchange : exchangesOf(row, model))
                table[static_cast<int>(model)].insert(exchange);
    for (const Line &expected : linesOfTheTable) {
        tell(expected);
        EXPECT_TRUE(table[static_cast<int>(expected.model)].count(expected.wire)) << expected.wire;
    }
    for (const Line &expected : otherLines)
        tell(expected);
    for (const protocol::Family &family : protocol::families())
        for (const protocol::Operation &operation : family.operations)
            EXPECT_TRUE(told.count(&operation)) << "no line of " << operation.name;
}

TEST(WireLines, KnowEveryExchangeOfTheWireTable)
{
    for (const WireCase &row : everyWireCase()) {
        // A row of several operations names them with a + in between.
        const std::string called = "+" + row.name.substr(0, row.name.find_first_of("(: ")) + "+";
        const auto isCalled = [&called](const protocol::Operation &operation) {
            for (std::size_t at = 0, end; (end = called.find('+', at + 1)) != std::string::npos; at = end) {
                if (operation.isSentBy(called.substr(at + 1, end - at - 1)))
                    return true;
            }
            return false;
        };
        for (const Model model : {Model::R20, Model::R20s, Model::R35}) {
            for (const std::string &exchange : exchangesOf(row, model)) {
                const protocol::Decoded decoded = decode(model, exchange, "", Outcome::Refused, 33);
                EXPECT_TRUE(decoded.asDescribed && isCalled(*decoded.operation)) << row.name << ": " << exchange;
            }
        }
    }
}

TEST(WireLines, TellWhyNothingCame)
{
    EXPECT_EQ(line(decode(Model::R20, "21/5", "01", Outcome::Refused, -2)), "GetClock() = status -2");
    EXPECT_EQ(line(decode(Model::R20, "21/5", "01", Outcome::Failed)), "GetClock() = failed");
}

TEST(WireLines, AreCutOnRequest)
{
    EXPECT_EQ(line(decode(Model::R20, "98/3 41 42 43", ""), 2), "Send(port=0, data=\"AB\"... (3 bytes)) = ok");
    EXPECT_EQ(line(decode(Model::R20, "6/2", "01 42 43"), 2), "Get8051Version() = version 01 42... (3 bytes)");
}

TEST(WireDocument, IsInStep)
{
    std::ostringstream page;
    page << std::ifstream(WIRE_DOCUMENT).rdbuf();
    EXPECT_EQ(page.str(), protocol::wireDocument()) << "scripts/wire_docs writes it anew";
}

}  // namespace

}  // namespace tests
