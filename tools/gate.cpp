#include "tools/gate.h"

#include "tools/failure.h"
#include "tools/holders.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <unistd.h>

namespace tools
{

void askOrRefuse(const std::string &question)
{
    std::fflush(stdout);
    std::fprintf(stderr, "%s [y/N] ", question.c_str());
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "y" && answer != "Y" && answer != "yes")
        throw Refusal("nothing was done");
}

void Consent::addTo(CLI::App &command)
{
    command.add_flag("--yes", yes, "do it without asking; needed where there is no terminal to ask at");
    command.add_flag("--beside", beside, "do it while other processes have the board open");
}

void Consent::needNobodyElse(const Board &board, const std::string &action) const
{
    const Holders holders = holdersOf({board.path()}).front();
    if (!holders.processes.empty() && !beside)
        throw Refusal("will not " + action + " on " + board.title() + " while it is open in " + holders.text(),
                      "Try: end that program first, or add --beside to do it beside it");
    if (!holders.complete)
        std::fprintf(stderr, "sorvane: not every process could be looked at: another user's may have %s open\n",
                     board.path().c_str());
}

void Consent::obtain(const Board &board, const std::string &action) const
{
    needNobodyElse(board, action);
    if (yes)
        return;
    if (!::isatty(STDIN_FILENO))
        throw UsageError("to " + action + " on " + board.title() +
                         " needs --yes, since there is no terminal to ask at");
    askOrRefuse("Really " + action + " on " + board.title() + "?");
    needNobodyElse(board, action);  // thinking took time
}

}  // namespace tools
