// What stands in front of everything that pays, moves, writes, resets or takes: nobody else may have the node open, and
// somebody has to want it, by an answer at the terminal or by --yes.
#ifndef SORVANE_TOOLS_GATE_H
#define SORVANE_TOOLS_GATE_H

#include "tools/board.h"

namespace tools
{

/// Throws Refusal unless the question is answered with yes.
void askOrRefuse(const std::string &question);

struct Consent {
    bool yes = false;
    bool beside = false;

    void addTo(CLI::App &command);
    /// Throws Refusal while another process has the board open and that was not allowed.
    void needNobodyElse(const Board &board, const std::string &action) const;
    /// Returns when the action, as in "pay 5 coins", may be done on the board; throws UsageError or Refusal otherwise.
    void obtain(const Board &board, const std::string &action) const;
};

}  // namespace tools

#endif
