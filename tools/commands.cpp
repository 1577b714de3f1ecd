// The table of commands, in the order in which --help shows them.
#include "tools/command.h"

namespace tools
{

Command::Action declareList(CLI::App &command);
Command::Action declareTrace(CLI::App &command);

namespace
{

constexpr Command table[] = {
    {"list", "every board: model, speed, firmware, serial numbers, who has it open", declareList},
    {"trace", "trace [OPTION...] -- PROGRAM [ARG...]: every exchange of a program", declareTrace, true},
};

}  // namespace

std::span<const Command> commands()
{
    return table;
}

}  // namespace tools
