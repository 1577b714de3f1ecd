// The table of conditions.
#include "sim/board/hoppers.h"
#include "sim/board/pulsed_inputs.h"
#include "sim/language/grammar.h"

namespace sim
{

namespace
{

Argument thing(std::vector<cabinet::Kind> kinds, const char *what, unsigned long most)
{
    return {.name = "PART", .sort = Sort::Part, .what = what, .most = most, .kinds = std::move(kinds)};
}

std::vector<Syntax> makeConditions()
{
    using cabinet::Kind;
    const Argument compared{
        .name = "=", .sort = Sort::Choice, .what = "comparison", .choices = {"=", "!=", "<", "<=", ">", ">="}};
    const Argument amount{.name = "N", .sort = Sort::Number, .what = "a number", .most = 0xFFFFFFFF};
    const Argument input = thing({Kind::Input, Kind::Coin}, "an input", inputCount - 1);
    const Argument output = thing({Kind::Output}, "an output", outputCount - 1);
    const Argument hopper = thing({Kind::Hopper}, "a hopper's input", inputCount - 1);
    const Argument port{
        .name = "PORT", .sort = Sort::Part, .what = "a serial port", .most = 1, .kinds = {Kind::Serial}};
    return {
        {.name = "output",
         .subject = output,
         .keywords = {"on", "off", "flashing"},
         .help = "steadily on or off, in both flash periods alike; or on in one of them. Pulses do not count"},
        {.name = "output",
         .subject = output,
         .keywords = {"lit"},
         .help = "on at this moment, by its flash period, a pulse or a hopper's release"},
        {.name = "input",
         .subject = input,
         .keywords = {"on", "off"},
         .help = "an input that the cabinet file calls active low is on at its low level"},
        {.name = "counter",
         .subject = thing({Kind::Coin, Kind::Input, Kind::Hopper}, "a counted input", counterCount - 1),
         .arguments = {compared, amount},
         .help = "the board's count of pulses; `=` or `!=`, `<`, `<=`, `>`, `>=`, here and below"},
        {.name = "hopper",
         .subject = hopper,
         .keywords = {"paid", "stock"},
         .arguments = {compared, amount},
         .help = "the coins that it has paid since its last release began, and those that it holds"},
        {.name = "hopper",
         .subject = hopper,
         .keywords = {"jammed", "empty", "paying"},
         .help = "a coin is stuck; it holds none; a release is under way"},
        {.name = "reel",
         .subject = thing({Kind::Reel}, "a reel", 2),
         .keywords = {"still", "turning"},
         .help = "it stands, or turns"},
        {.name = "meter",
         .subject = thing({Kind::Meter}, "a meter", 0xFFFF),
         .arguments = {compared, amount},
         .help = "what the EEPROM holds for a meter of the cabinet file"},
        {.name = "eeprom",
         .subject = Argument{.name = "ADDRESS", .sort = Sort::Number, .what = "an address", .most = 0xFFFF},
         .keywords = {"="},
         .arguments = {{.name = "BYTE", .sort = Sort::Byte, .what = "a byte", .repeated = true}},
         .help = "what the EEPROM holds there, in hexadecimal: `eeprom 8 = 2A 00`"},
        {.name = "serial",
         .subject = port,
         .keywords = {"sent"},
         .arguments = {{.name = "\"TEXT\"", .sort = Sort::Text, .what = "a text, with \\n, \\r, \\t, \\\\ and \\xHH"}},
         .help = "happens: the port sends these bytes, in one piece or in several"},
        {.name = "operation",
         .arguments = {{.name = "NAME", .sort = Sort::Operation, .what = "an operation"}},
         .help = "happens: the program asks this of the board, as in `operation GetClock`"},
        {.name = "firmware", .keywords = {"running"}, .help = "it has been loaded"},
        {.name = "plugged", .help = "while a board is not, nothing holds but `not plugged`"},
        {.name = "quiet",
         .arguments = {{.name = "TIME", .sort = Sort::Time, .what = "a time"}},
         .help = "no exchange has come for so long"},
    };
}

}  // namespace

const SyntaxTable &conditionSyntax()
{
    static const std::vector<Syntax> rows = makeConditions();
    static const SyntaxTable table = [] {
        SyntaxTable all;
        for (const Syntax &row : rows)
            all.push_back(&row);
        return all;
    }();
    return table;
}

}  // namespace sim
