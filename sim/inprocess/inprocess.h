// Virtual boards inside the process: its own calls of open, ioctl and fopen reach them at the boards' paths,
// /dev/Vexa_<n> and /sys/class/Vexa/Vexa_<n>/device/product and speed. Every other call goes to the C library.
//
// A board's descriptor is a real one with the caller's flags, a nameless file of its own. It is recognised by that file
// and not by its number, so dup, dup2, fcntl, fork and close need no help; a descriptor that is closed and reused by
// something else is never mistaken for a board. Forking copies the boards: each process goes on with its own.
#ifndef SORVANE_SIM_INPROCESS_INPROCESS_H
#define SORVANE_SIM_INPROCESS_INPROCESS_H

#include "sim/board/virtual_boards.h"

namespace sim
{

/// The boards of this process; they run on the machine's clock until useClock() says otherwise.
VirtualBoards &inProcessBoards();

/// The numbers of the descriptors that are open on the board at this moment, those of an earlier plug included.
std::vector<int> openDescriptors(int deviceNo);

/// What has been seen of calls at the boards' paths since the start or the last reset.
struct InProcessCalls {
    unsigned long opens = 0;
    unsigned long ioctls = 0;
    int lastOpenFlags = 0;
};
InProcessCalls inProcessCalls();
void resetInProcessCalls();

}  // namespace sim

#endif
