// The way without device nodes: the boards live in the program itself, through a library that is loaded before the C
// library and answers the calls at the boards' paths.
#ifndef SORVANE_SIM_COMMAND_PRELOAD_H
#define SORVANE_SIM_COMMAND_PRELOAD_H

#include "sim/command/run_command.h"

namespace sim
{

/// What the library finds in its environment.
constexpr char preloadBoards[] = "SORVANE_SIM_BOARDS";      // the words of --board, blanks between them
constexpr char preloadScenario[] = "SORVANE_SIM_SCENARIO";  // a file
constexpr char preloadProgram[] = "SORVANE_SIM_PROGRAM";    // the process that says what was not reached

/// Becomes the program. Fails where the program allows no such library: a static one, one with more rights than its
/// user, one of a width for which there is no library.
[[noreturn]] void executePreloaded(const RunRequest &request, const TextWords &program);

}  // namespace sim

#endif
