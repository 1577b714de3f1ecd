// A program under supervision: in a process namespace of its own, so that whatever it leaves running ends with it, and
// in the process group and at the terminal of whoever started the run.
#ifndef SORVANE_SIM_SYSTEM_PROGRAM_H
#define SORVANE_SIM_SYSTEM_PROGRAM_H

#include "sim/system/child_process.h"
#include "sim/system/signals.h"

#include <string>
#include <vector>

namespace sim
{

struct Supervision {
    const BlockedSignals &blocked;
    ProcessGroupMember &groupMember;
    /// The process that serves the boards of this run, told by a message when the program starts; null when the boards
    /// belong to somebody else.
    ChildProcess *boards;
    int watched = -1;  ///< a descriptor that stays open
};

/// Runs the program to its end and passes every signal on that it has not got by itself. The result is its wait status
/// (126 or 127 as an exit when it cannot be started). Everything it started is gone when this returns.
int runProgram(const std::vector<std::string> &words, Supervision supervision);

/// Where execute() is going to find it; empty when nowhere.
std::string findProgram(const std::string &name);

/// Becomes the program; where that fails it says so and exits with 126 or 127.
[[noreturn]] void execute(const std::vector<std::string> &words);

/// Waits for a signal that ends a program; the result is its number.
int waitForEndingSignal();

/// Ends this process as the program ended: with its status or by its signal.
[[noreturn]] void endLike(int waitStatus);

}  // namespace sim

#endif
