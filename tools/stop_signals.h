// Ctrl-C, SIGTERM and SIGHUP as something that a command looks at between two exchanges: none of them interrupts an
// exchange, and what was begun can be ended. A reader of the output that goes away does not end the command either.
#ifndef SORVANE_TOOLS_STOP_SIGNALS_H
#define SORVANE_TOOLS_STOP_SIGNALS_H

#include <chrono>
#include <csignal>
#include <initializer_list>

namespace tools
{

class StopSignals
{
public:
    /// Makes at most one; `more` signals are taken as a wish to stop, too.
    explicit StopSignals(std::initializer_list<int> more = {});
    ~StopSignals();
    StopSignals(const StopSignals &) = delete;
    StopSignals &operator=(const StopSignals &) = delete;

    /// Whether one has come, or standard output has nobody who reads it.
    bool arrived();
    /// Sleeps for that time, less when one comes or `descriptor` has something to read; returns arrived().
    bool wait(std::chrono::milliseconds time, int descriptor = -1);

private:
    int fd_;
    bool arrived_ = false;
    sigset_t before_;
};

}  // namespace tools

#endif
