// What a command of `sorvane` is made of. Each has a file of its own and a row in the table of commands.cpp.
//
//     Command::Action declareClock(CLI::App &command)
//     {
//         auto options = std::make_shared<Options>();
//         command.add_option("BOARD", options->board)->required();
//         return [options](const Settings &settings) { return showClock(*options, settings); };
//     }
#ifndef SORVANE_TOOLS_COMMAND_H
#define SORVANE_TOOLS_COMMAND_H

#include "sim/cabinet/cabinet.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace tools
{

/// What can be said with every command.
struct Settings {
    bool json = false;
    cabinet::Cabinet cabinet;          ///< without --cabinet: no names
    std::vector<std::string> program;  ///< the words behind --
};

struct Command {
    /// Carries the command out, once, after all options were read; returns the exit status or throws one of failure.h.
    using Action = std::function<int(const Settings &)>;

    const char *name;
    const char *help;
    Action (*declare)(CLI::App &command);
    bool takesProgram = false;  ///< whether words behind -- are allowed
};

std::span<const Command> commands();

}  // namespace tools

#endif
