// `ctl`: a command for a run that is up.
#ifndef SORVANE_SIM_COMMAND_CTL_COMMAND_H
#define SORVANE_SIM_COMMAND_CTL_COMMAND_H

#include "sim/language/words.h"

#include <optional>

namespace sim
{

/// The result is the exit status. `run` is empty when none was named. Files are opened here, not by the run.
int control(const std::optional<std::string> &run, const TextWords &words);

}  // namespace sim

#endif
