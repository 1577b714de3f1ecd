// Whether a board is well, by what resets and takes nothing. Two tests write and put back, or send: a pattern in a
// spare region of the SRAM that is named, and the serial ports where loop-back plugs are; these are asked about.
#include "tools/failure.h"
#include "tools/gate.h"
#include "tools/holders.h"
#include "tools/junit.h"
#include "tools/print.h"
#include "tools/probe.h"
#include "tools/serial_line.h"
#include "tools/sram_access.h"
#include "tools/stop_signals.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <set>
#include <thread>

namespace tools
{

namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

struct SelftestOptions {
    std::string board, junit;
    std::optional<std::size_t> sram;
    bool loopback = false;
    Consent consent;
};

struct Bench {
    Board &board;
    const SelftestOptions &options;
    StopSignals &signals;
};

Verdict passed(const std::string &detail)
{
    return {Outcome::Passed, detail};
}
Verdict failed(const std::string &detail)
{
    return {Outcome::Failed, detail};
}
Verdict notFitted(const std::string &why)
{
    return {Outcome::NotFitted, why};
}

Verdict testNode(Bench &bench)
{
    const Holders holders = holdersOf({bench.board.path()}).front();
    return passed(bench.board.path() + " may be read and written" +
                  (holders.processes.empty() ? "" : "; also open in " + holders.text()));
}

Verdict testFirmware(Bench &bench)
{
    if (bench.board.firmwareRuns())
        return passed("runs, " + readable(bench.board.ask("Get8051Version").bytes("version")));
    return failed("does not run; sorvane firmware " + std::to_string(bench.board.device()) + " load");
}

Verdict testIdentities(Bench &bench)
{
    const Probe found = probe(bench.board);
    if (!found.trouble.empty())
        return failed(found.trouble);
    return found.picVersion && found.picSerial
               ? passed("PIC " + readable(*found.picVersion) + ", serial number " + readable(*found.picSerial))
               : failed("the PIC answers without a version or a serial number");
}

Verdict testOneWire(Bench &bench)
{
    if (!bench.board.has("GetDallasSerialNumber"))
        return notFitted("an R20 has no 1-Wire number");
    const std::string number = bench.board.ask("GetDallasSerialNumber").bytes("serialNumber");
    return {isCheckByteRight(number) ? Outcome::Passed : Outcome::Failed,
            hexadecimal(number) + (isCheckByteRight(number) ? ", check byte right" : ", CHECK BYTE WRONG")};
}

Verdict testEEPROM(Bench &bench)
{
    constexpr std::uint32_t firstAddress = 8, length = 32;
    const auto read = [&bench] {
        return bench.board.tryToAsk("ReadEEPROM", {{"length", length}, {"address", firstAddress}});
    };
    const protocol::Decoded first = read();
    if (first.outcome == protocol::Outcome::Refused)
        return notFitted("refused with status " + std::to_string(first.status) +
                         ": no program has configured it since the board has power (sorvane eeprom " +
                         std::to_string(bench.board.device()) + " detect)");
    const protocol::Decoded second = read();
    if (second.outcome != protocol::Outcome::Success || first.outcome != protocol::Outcome::Success)
        refuse("reading the EEPROM", std::max(first.status, second.status));
    if (Answer(first).bytes("data") != Answer(second).bytes("data"))
        return failed("two reads of the first bytes differ");
    return passed("the first " + std::to_string(length) + " bytes read twice alike");
}

constexpr std::size_t patternBytes = 64;

Verdict testSRAM(Bench &bench)
{
    if (!bench.options.sram)
        return notFitted("no spare region was named (--sram ADDRESS)");
    const std::size_t address = *bench.options.sram;
    BorrowedSRAM borrowed(bench.board, address, patternBytes);
    for (const unsigned char seed : {0x55, 0xAA}) {
        std::string pattern(patternBytes, '\0');
        for (std::size_t n = 0; n < pattern.size(); ++n)
            pattern[n] = static_cast<char>(seed ^ n);  // each byte another, so that addresses are told apart
        writeSRAM(bench.board, address, pattern);
        if (readSRAM(bench.board, address, patternBytes) != pattern)
            return failed("a pattern at address " + std::to_string(address) + " reads back differently");
    }
    borrowed.giveBack();
    if (readSRAM(bench.board, address, patternBytes) != borrowed.bytes())
        return failed("what was at address " + std::to_string(address) +
                      " could not be put back: " + hexadecimal(borrowed.bytes()));
    return passed("a pattern at address " + std::to_string(address) + " reads back, and was taken away again");
}

Verdict testClock(Bench &bench)
{
    constexpr milliseconds patience(3000), betweenTwoLooks(50);
    const std::uint32_t first = bench.board.ask("GetClock").number("time");
    const Clock::time_point end = Clock::now() + patience;
    while (Clock::now() < end && !bench.signals.wait(betweenTwoLooks)) {
        const std::uint32_t now = bench.board.ask("GetClock").number("time");
        if (now != first)
            return passed("went from " + std::to_string(first) + " to " + std::to_string(now));
    }
    return failed("stands at " + std::to_string(first) + " for " + std::to_string(patience.count()) + " ms");
}

Verdict testRandomNumbers(Bench &bench)
{
    constexpr int draws = 16;
    std::set<std::uint32_t> numbers;
    for (int draw = 0; draw < draws; ++draw) {
        const protocol::Decoded drawn = bench.board.tryToAsk("GetRandomNumber");
        if (drawn.outcome == protocol::Outcome::Refused)
            return notFitted("refused with status " + std::to_string(drawn.status) + ": the generator may be off");
        if (drawn.outcome != protocol::Outcome::Success)
            refuse("drawing a number", drawn.status);
        numbers.insert(Answer(drawn).number("number"));
    }
    if (numbers.size() == 1)
        return failed("stuck at " + std::to_string(*numbers.begin()));
    return passed(std::to_string(numbers.size()) + " different ones of " + std::to_string(draws));
}

Verdict testLatency(Bench &bench)
{
    constexpr std::size_t exchanges = 200;
    std::vector<long> times;
    while (times.size() < exchanges && !bench.signals.arrived()) {
        const Clock::time_point start = Clock::now();
        bench.board.ask("FirmwareRuns");
        times.push_back(std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start).count());
    }
    if (times.empty())
        return failed("stopped");
    std::sort(times.begin(), times.end());
    return passed("an exchange takes " + std::to_string(times.front()) + " us at least, " +
                  std::to_string(times[times.size() / 2]) + " in the median, " +
                  std::to_string(times[times.size() * 99 / 100]) + " at the 99th percentile");
}

Verdict testLoopback(Bench &bench, int port)
{
    if (!bench.options.loopback)
        return notFitted("no loop-back plug was named (--loopback)");
    constexpr milliseconds patience(1000);
    SerialLine line(bench.board, port);
    line.configure({});
    line.receive();
    const std::string sent = "Loop-back test of port " + std::to_string(port);
    line.send(sent);
    std::string received;
    const Clock::time_point end = Clock::now() + patience;
    while (received.size() < sent.size() && Clock::now() < end && !bench.signals.wait(milliseconds(10)))
        received += line.receive();
    if (received == sent)
        return passed(std::to_string(sent.size()) + " bytes came back");
    return failed(received.empty() ? "nothing came back" : "other bytes came back: " + hexadecimal(received));
}

Verdict testPort0(Bench &bench)
{
    return testLoopback(bench, 0);
}
Verdict testPort1(Bench &bench)
{
    return testLoopback(bench, 1);
}

struct Test {
    const char *name;
    Verdict (*carryOut)(Bench &bench);
    bool needsFirmware = true;
};

constexpr Test tests[] = {{"node and rights", testNode, false},
                          {"firmware", testFirmware, false},
                          {"identities", testIdentities},
                          {"1-Wire number", testOneWire},
                          {"EEPROM", testEEPROM},
                          {"SRAM", testSRAM},
                          {"clock", testClock},
                          {"random numbers", testRandomNumbers},
                          {"latency", testLatency},
                          {"serial port 0", testPort0},
                          {"serial port 1", testPort1}};

TestReport carryOut(const Test &test, Bench &bench, bool firmwareRuns)
{
    const Clock::time_point start = Clock::now();
    TestReport report{test.name, {}, 0};
    try {
        report.verdict =
            test.needsFirmware && !firmwareRuns ? notFitted("the firmware does not run") : test.carryOut(bench);
    } catch (const Refusal &refusal) {
        report.verdict = failed(refusal.what());
    }
    report.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    return report;
}

void checkSpareRegion(const SelftestOptions &options, const Board &board)
{
    const std::size_t most = sramBytes(board.model()) - patternBytes;
    if (options.sram && *options.sram > most)
        throw UsageError("--sram " + std::to_string(*options.sram) + ": allowed: 0 to " + std::to_string(most));
}

int selftest(const SelftestOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    checkSpareRegion(options, board);
    if (options.sram || options.loopback)
        options.consent.obtain(board, std::string("test ") +
                                          (options.sram ? "with a pattern in its SRAM, which is put back" : "") +
                                          (options.sram && options.loopback ? ", and " : "") +
                                          (options.loopback ? "by sending on both serial ports" : ""));
    StopSignals signals;
    Bench bench{board, options, signals};
    std::vector<TestReport> reports;
    bool firmwareRuns = false;
    for (const Test &test : tests) {
        if (signals.arrived())
            throw Refusal("the test was stopped; what was begun was ended");
        reports.push_back(carryOut(test, bench, firmwareRuns));
        const TestReport &report = reports.back();
        firmwareRuns = firmwareRuns || (test.carryOut == testFirmware && report.verdict.outcome == Outcome::Passed);
        if (!settings.json)
            say("%-10s  %-16s %s\n", wordFor(report.verdict.outcome), test.name, report.verdict.detail.c_str());
    }
    if (settings.json)
        print({{"board", board.device()}, {"tests", jsonOf(reports)}});
    if (!options.junit.empty())
        writeJUnit(options.junit, "sorvane selftest " + board.title(), reports);
    return hasFailed(reports) ? statusOfFailure : 0;
}

}  // namespace

Command::Action declareSelftest(CLI::App &command)
{
    auto options = std::make_shared<SelftestOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("--sram", options->sram,
                       "the address of 64 spare bytes of the SRAM: a pattern is written there and put back");
    command.add_flag("--loopback", options->loopback,
                     "both serial ports have loop-back plugs: tries them at 9600 bit/s");
    command.add_option("--junit", options->junit, "a file for the results as JUnit XML");
    options->consent.addTo(command);
    return [options](const Settings &settings) { return selftest(*options, settings); };
}

}  // namespace tools
