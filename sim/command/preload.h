// The way without device nodes: the boards live in the program itself, through a library that is loaded before the C
// library and answers the calls at the boards' paths.
#ifndef SORVANE_SIM_COMMAND_PRELOAD_H
#define SORVANE_SIM_COMMAND_PRELOAD_H

#include "sim/command/run_request.h"

namespace sim
{

/// Becomes the program. Fails where the program allows no such library: a static one, one with more rights than its
/// user, one of a width for which there is no library.
[[noreturn]] void executePreloaded(const RunRequest &request);

}  // namespace sim

#endif
