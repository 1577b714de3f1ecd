// The thread that makes a driver call, seen from the process that serves it.
#ifndef SORVANE_SIM_NODES_CALLER_H
#define SORVANE_SIM_NODES_CALLER_H

#include <sys/types.h>

namespace sim
{

/// Whether a signal waits for this thread that is going to end it. The kernel keeps a caller until its call is
/// answered, so a call that takes long has to look.
bool isDying(pid_t thread);

}  // namespace sim

#endif
