// Memories that a board keeps over runs, in files.
#ifndef SORVANE_SIM_LANGUAGE_KEPT_MEMORIES_H
#define SORVANE_SIM_LANGUAGE_KEPT_MEMORIES_H

#include "sim/language/board_options.h"

namespace sim
{

/// Takes the contents from the files; one that is not there yet leaves its memory as it comes. Throws UsageError for a
/// file of the wrong size, one that cannot be read or written, and one that two memories would share.
void loadMemories(VirtualBoards &boards, const std::vector<BoardOptions> &options);

/// The same, and from now on they are written whenever the board loses its power. What fails then is a
/// std::runtime_error of whoever pulled the plug.
void keepMemories(VirtualBoards &boards, const std::vector<BoardOptions> &options);

/// The run ends, and with it the power of these boards. Complaints go to standard error.
void endMemories(VirtualBoards &boards, const std::vector<BoardOptions> &options);

}  // namespace sim

#endif
