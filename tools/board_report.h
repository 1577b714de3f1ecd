// What list and info tell of a board.
#ifndef SORVANE_TOOLS_BOARD_REPORT_H
#define SORVANE_TOOLS_BOARD_REPORT_H

#include "tools/command.h"
#include "tools/holders.h"
#include "tools/print.h"

namespace tools
{

/// One entry of a list or an object; a node that cannot be opened has an "error".
Json reportOf(const Settings &settings, int device, const Holders &holders);

/// The same for people.
void sayReport(const Json &report);

}  // namespace tools

#endif
