// `run`, `serve` and `enter`.
#ifndef SORVANE_SIM_COMMAND_RUN_COMMAND_H
#define SORVANE_SIM_COMMAND_RUN_COMMAND_H

#include "sim/command/run_request.h"

namespace sim
{

/// Each ends the process as its program ends.
[[noreturn]] void runWithBoards(const RunRequest &request);
[[noreturn]] void enterRun(const std::optional<std::string> &which, const TextWords &program, bool endsWithRun);

/// Until a signal ends it; the result is the exit status.
int serveBoards(const RunRequest &request);

}  // namespace sim

#endif
