// The table of commands, in the order in which --help shows them.
#include "tools/command.h"

namespace tools
{

Command::Action declareList(CLI::App &command);

namespace
{

constexpr Command table[] = {
    {"list", "every board: model, speed, firmware, serial numbers, who has it open", declareList},
};

}  // namespace

std::span<const Command> commands()
{
    return table;
}

}  // namespace tools
