// What can be done to the boards while a program drives them, as words: `ctl` and scenarios speak the same.
//
//     [--board N] COMMAND
#ifndef SORVANE_SIM_LANGUAGE_COMMANDS_H
#define SORVANE_SIM_LANGUAGE_COMMANDS_H

#include "sim/board/virtual_boards.h"
#include "sim/language/words.h"

namespace sim
{

class Command
{
public:
    /// Throws UsageError for everything that can be told without the boards.
    static Command parse(const TextWords &words);

    /// The answer for whoever asked, often empty. Throws UsageError when there is no such board, when the board is not
    /// named among several, or when its model lacks what is asked for.
    std::string carryOut(VirtualBoards &boards) const;

private:
    std::optional<int> deviceNo_;
    std::function<std::string(VirtualBoard &)> onOne_;
    std::function<std::string(VirtualBoards &, std::optional<int>)> onAll_;
};

std::string commandsHelp();

}  // namespace sim

#endif
