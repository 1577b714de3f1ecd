#include "sim/system/child_process.h"

#include "sim/system/failure.h"

#include <sys/wait.h>

namespace sim
{

ChildProcess::ChildProcess(const std::function<void(Channel)> &life)
{
    std::pair<Channel, Channel> ends = Channel::pair();
    Channel &here = ends.first;
    Channel &there = ends.second;
    id_ = checked(::fork(), "starting a process");
    if (id_ == 0) {
        here.close();
        life(std::move(there));
        ::_exit(0);
    }
    channel_ = std::move(here);
}

ChildProcess::~ChildProcess()
{
    channel_.close();
    ::waitpid(id_, nullptr, 0);
}

}  // namespace sim
