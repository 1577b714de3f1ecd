// `state --follow`: the state of the boards, redrawn in place on the terminal.
#ifndef SORVANE_SIM_COMMAND_FOLLOW_H
#define SORVANE_SIM_COMMAND_FOLLOW_H

#include "sim/control/run_names.h"
#include "sim/language/words.h"

namespace sim
{

/// Until a signal ends it or the run does; the result is the exit status. The terminal is left as it was.
int followState(const RunName &run, const TextWords &words);

}  // namespace sim

#endif
