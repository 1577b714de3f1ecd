// `run`, `serve` and `enter`.
#ifndef SORVANE_SIM_COMMAND_RUN_COMMAND_H
#define SORVANE_SIM_COMMAND_RUN_COMMAND_H

#include "sim/command/scenario.h"

namespace sim
{

/// How the boards reach the program.
enum class How { Node, Preload, Auto };

/// node, preload or auto; throws UsageError for anything else.
How howFrom(const std::string &word);

struct RunRequest {
    std::vector<BoardOptions> boards;
    Scenario scenario;
    bool privateIpc = true;
    How how = How::Auto;
    TextWords boardArguments;  ///< as they came, for who plugs the boards elsewhere
    std::string scenarioFile;
};

/// Each ends the process as its program ends.
[[noreturn]] void runWithBoards(const RunRequest &request, const TextWords &program);
[[noreturn]] void enterRun(const std::optional<std::string> &id, const TextWords &program);

/// Until a signal ends it; the result is the exit status.
int serveBoards(const RunRequest &request);

}  // namespace sim

#endif
