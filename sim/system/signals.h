// Signals of a process that stands between a program and whoever signals it.
#ifndef SORVANE_SIM_SYSTEM_SIGNALS_H
#define SORVANE_SIM_SYSTEM_SIGNALS_H

#include "sim/system/child_process.h"

#include <csignal>
#include <set>

namespace sim
{

/// Blocks every signal for as long as it lives, here and in the processes that are started meanwhile.
class BlockedSignals
{
public:
    BlockedSignals();
    BlockedSignals(const BlockedSignals &) = delete;
    BlockedSignals &operator=(const BlockedSignals &) = delete;
    ~BlockedSignals() { restore(); }

    /// The mask that the caller came with.
    void restore() const { ::sigprocmask(SIG_SETMASK, &original_, nullptr); }

private:
    sigset_t original_;
};

/// A process that does nothing but sit in this process's group. A signal that came to it, too, was sent to the whole
/// group (by the terminal, by kill with a negative number, by timeout), so every program in the group has it already.
class ProcessGroupMember
{
public:
    ProcessGroupMember();
    ProcessGroupMember(const ProcessGroupMember &) = delete;
    ProcessGroupMember &operator=(const ProcessGroupMember &) = delete;

    int channel() const { return process_.channel().fd(); }
    /// Whether this signal, which has just been taken, came to the group. Each is answered for once.
    bool alsoReceived(int signal);

private:
    ChildProcess process_;
    std::multiset<int> seen_;
};

}  // namespace sim

#endif
