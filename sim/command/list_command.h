// `list` and `stop`: the runs of this user, or of everybody for root.
#ifndef SORVANE_SIM_COMMAND_LIST_COMMAND_H
#define SORVANE_SIM_COMMAND_LIST_COMMAND_H

#include <string>

namespace sim
{

/// Both results are exit statuses.
int listRuns(bool asJson);
/// Ends it as SIGTERM would, and waits until it is gone.
int stopRun(const std::string &which);

}  // namespace sim

#endif
