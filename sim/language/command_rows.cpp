// The table of commands.
#include "journal/event.h"
#include "sim/language/actions.h"

namespace sim
{

namespace
{

using cabinet::Kind;

constexpr unsigned long mostExchanges = 1000000;

Argument part(Kind kind, const char *what, unsigned long count)
{
    return {.name = "PART", .sort = Sort::Part, .what = what, .most = count - 1, .kinds = {kind}};
}

Argument number(const char *name, const char *what, unsigned long least, unsigned long most)
{
    return {.name = name, .sort = Sort::Number, .what = what, .least = least, .most = most};
}

Argument left(Argument argument)
{
    argument.optional = true;
    return argument;
}

Argument repeated(Argument argument)
{
    argument.repeated = true;
    return argument;
}

Argument file(const char *name, Sort sort)
{
    return {.name = name, .sort = sort, .what = "a file's name"};
}

std::vector<CommandRow> makeRows()
{
    const Argument input = part(Kind::Input, "an input", inputCount);
    const Argument coin{.name = "COIN",
                        .sort = Sort::Part,
                        .what = "a coin",
                        .most = inputCount - 1,
                        .kinds = {Kind::Coin, Kind::CcTalkCoin}};
    const Argument hopper = part(Kind::Hopper, "a hopper's input", inputCount);
    const Argument theSwitch = left(part(Kind::Switch, "a switch", switchCount));
    Argument port = part(Kind::Serial, "a serial port", 2);
    port.name = "PORT";
    const Argument text{.name = "\"TEXT\"", .sort = Sort::Text, .what = "a text, with \\n, \\r, \\t, \\\\ and \\xHH"};
    const Argument time{.name = "TIME", .sort = Sort::Time, .what = "a time"};
    const Option count{"count", number("N", "a number of exchanges", 1, mostExchanges), "N exchanges instead of one"};
    const Option request{"request", number("CODE", "a request code", 1, 255), "only exchanges of this request"};
    const Argument condition{.name = "CONDITION", .sort = Sort::Condition, .what = "a condition"};
    const Argument eventNumber = number("N", "the number of an event", 0, 0xFFFFFFFF);
    Argument kind{.name = "KIND", .sort = Sort::Choice, .what = "kind of event", .repeated = true};
    for (std::size_t i = 0; i < journal::kindCount; ++i)
        kind.choices.push_back(wordFor(static_cast<journal::Kind>(i)));
    const Argument anyPart{.name = "NAME",
                           .sort = Sort::Part,
                           .what = "a part",
                           .most = 0xFFFFFFFF,
                           .kinds = {Kind::Input, Kind::Output, Kind::Coin, Kind::CcTalkCoin, Kind::Hopper, Kind::Reel,
                                     Kind::Meter, Kind::Serial},
                           .repeated = true};
    const Option page{"--page", number("N", "a page of 16 KiB", 0, 64), "one page of 16 KiB only"};

    return {
        {{.name = "input",
          .subject = input,
          .keywords = {"on", "off"},
          .help =
              "puts an input, 0 to 32, on or off; one that the cabinet file calls active low is on at its low level"},
         setInput},
        {{.name = "input",
          .subject = input,
          .keywords = {"pulse"},
          .arguments = {left(number("COUNT", "a number of pulses", 1, 65535))},
          .help = "lets an input be on for 20 ms, COUNT times (1), once every 40 ms"},
         pulseInput},
        {{.name = "coin",
          .subject = coin,
          .help =
              "throws a coin in: by number into the ccTalk acceptor if there is one, otherwise a pulse on the input "
              "of this number; by name whichever of both the cabinet file says"},
         insertCoin},
        {{.name = "hopper",
          .subject = hopper,
          .keywords = {"stock"},
          .arguments = {number("COINS", "a stock of coins", 0, 65535)},
          .help =
              "puts so many coins into the hopper whose coins pass this input, and hangs one there if there is none"},
         stockHopper},
        {{.name = "hopper",
          .subject = hopper,
          .keywords = {"jam", "free"},
          .help = "a coin gets stuck in the hopper, or is free again"},
         jamHopper},
        {{.name = "switch",
          .subject = theSwitch,
          .keywords = {"open", "close"},
          .help = "a security switch, 0 to 7 (0)"},
         turnSwitch},
        {{.name = "battery", .keywords = {"fail", "replace"}, .help = "the backup battery"}, changeBattery},
        {{.name = "clock",
          .keywords = {"set"},
          .arguments = {left(number("SECONDS", "a time in seconds", 0, 0xFFFFFFFF))},
          .help = "the board's clock; without a number the machine's time"},
         setClock},
        {{.name = "clock", .keywords = {"fail"}, .help = "the board's clock fails"}, failClock},
        {{.name = "serial",
          .subject = port,
          .keywords = {"send"},
          .arguments = {text},
          .help = "lets bytes arrive at a serial port; `\\n`, `\\r`, `\\t`, `\\\\` and `\\xHH` are understood"},
         sendSerial},
        {{.name = "serial",
          .subject = port,
          .keywords = {"parity"},
          .arguments = {left(number("WORDS", "a number of words", 1, 65535))},
          .help = "the next words that arrive (1) have a wrong parity"},
         spoilParity},
        {{.name = "spi",
          .keywords = {"reply"},
          .arguments = {repeated(number("BYTE", "a byte", 0, 255))},
          .help = "the SPI slave's next answer"},
         replySPI},
        {{.name = "fail",
          .keywords = {"ioctl"},
          .arguments = {left(number("ERRNO", "an error number", 1, 133))},
          .options = {count, request},
          .help = "the next driver call fails with this error number (5, EIO)"},
         failIoctl,
         checkErrno},
        {{.name = "fail",
          .keywords = {"status"},
          .arguments = {number("STATUS", "a status", 1, 0xFFFFFFFF)},
          .options = {count, request},
          .help = "the board refuses the next exchange with this status"},
         failStatus},
        {{.name = "fail",
          .keywords = {"short"},
          .arguments = {left(number("BYTES", "a number of bytes", 0, 256))},
          .options = {count, request},
          .help = "the next answer is cut to so many bytes. On an R20 they are counted with the echo and the status in "
                  "front; the default 1 is then a broken packet. On the others the default is an answer without bytes"},
         failShort},
        {{.name = "fail",
          .keywords = {"echo"},
          .arguments = {left(number("CODE", "a request code", 0, 255))},
          .options = {count, request},
          .help = "R20 only: the next answer echoes another request code"},
         failEcho},
        {{.name = "fail", .keywords = {"off"}, .help = "every fault that still waits is dropped, `slow` too"},
         dropFaults},
        {{.name = "unplug",
          .help =
              "pulls the board off. It loses its firmware and its EEPROM configuration; open descriptors stay dead"},
         unplug},
        {{.name = "plug", .help = "plugs it in again"}, plug},
        {{.name = "slow",
          .arguments = {time},
          .options = {count},
          .help = "every exchange, or the next N, takes so much longer: `20ms`, `1.5s`, `300us`; `0s` ends it"},
         slowDown},
        {{.name = "eeprom",
          .keywords = {"dump"},
          .arguments = {file("FILE", Sort::NewFile)},
          .help = "writes the EEPROM's contents into a file; `-` is the standard output"},
         dumpEEPROM,
         nullptr,
         false},
        {{.name = "eeprom",
          .keywords = {"load"},
          .arguments = {file("FILE", Sort::Content)},
          .help = "takes them from a file of exactly its size; `-` is the standard input"},
         loadEEPROM},
        {{.name = "sram",
          .keywords = {"dump"},
          .arguments = {file("FILE", Sort::NewFile)},
          .options = {page},
          .help = "writes the SRAM's contents, or a page of 16 KiB, into a file"},
         dumpSRAM,
         nullptr,
         false},
        {{.name = "sram",
          .keywords = {"load"},
          .arguments = {file("FILE", Sort::Content)},
          .options = {page},
          .help = "takes them from a file of exactly that size"},
         loadSRAM},
        {{.name = "state",
          .options = {{"--json", std::nullopt, "as JSON"},
                      {"--follow", std::nullopt, "on a terminal, redrawn in place until Ctrl-C"}},
          .help = "the whole board, or every board"},
         tellState},
        {{.name = "wait",
          .arguments = {condition},
          .options = {{"within", time, "TIME instead of 5s"},
                      {"--since", eventNumber, "also what came behind event N"}},
          .help = "until a condition holds or has held, from now on"},
         waitForCondition,
         checkWait},
        {{.name = "expect", .arguments = {condition}, .help = "whether a condition holds now"},
         expectCondition,
         checkExpect},
        {{.name = "events",
          .options = {{"--follow", std::nullopt, "goes on with what happens, until Ctrl-C or the end of the run"},
                      {"--since", eventNumber, "what came behind event N"},
                      {"--kind", kind, "only of these kinds"},
                      {"--part", anyPart, "only of these parts"},
                      {"--exchanges", std::nullopt, "the exchanges with the program, too"},
                      {"--json", std::nullopt, "as JSON Lines (docs/journal.schema.json)"}},
          .help = "what has happened on the board, or on every board, as far as it is kept: the last 65536 events a "
                  "board, exchanges included"},
         tellEvents},
    };
}

}  // namespace

const std::vector<CommandRow> &commandRows()
{
    static const std::vector<CommandRow> rows = makeRows();
    return rows;
}

}  // namespace sim
