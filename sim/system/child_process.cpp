#include "sim/system/child_process.h"

#include "sim/system/failure.h"

#include <sys/wait.h>

namespace sim
{

ChildProcess::ChildProcess(const std::function<void(Channel)> &life)
{
    auto [here, there] = Channel::pair();
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
