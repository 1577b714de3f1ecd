// A process that this one starts and talks to.
#ifndef SORVANE_SIM_SYSTEM_CHILD_PROCESS_H
#define SORVANE_SIM_SYSTEM_CHILD_PROCESS_H

#include "sim/system/channel.h"

#include <functional>
#include <sys/types.h>

namespace sim
{

class ChildProcess
{
public:
    /// Forks. The child lives `life` with its end of the channel and ends there.
    explicit ChildProcess(const std::function<void(Channel)> &life);
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;
    /// Closes the channel, by which the child knows that it is to end, and waits for it.
    ~ChildProcess();

    pid_t id() const { return id_; }
    Channel &channel() { return channel_; }
    const Channel &channel() const { return channel_; }

private:
    Channel channel_{};
    pid_t id_ = -1;
};

}  // namespace sim

#endif
