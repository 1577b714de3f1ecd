#include "sim/system/process_namespace.h"

#include "sim/system/failure.h"

#include <csignal>
#include <sched.h>
#include <stdexcept>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>

namespace sim
{

namespace
{

[[noreturn]] void runInitProcess(Channel channel)
{
    closeAllBut({channel.fd()});
    for (const int standard : {0, 1, 2})
        redirectToNull(standard);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent's id cannot be seen from here. If it died before the line above, the channel has ended.
    if (!channel.send("?") || !channel.receive())
        ::_exit(0);
    (void)::mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr);
    channel.send("ready");
    sigset_t children;
    ::sigemptyset(&children);
    ::sigaddset(&children, SIGCHLD);
    for (;;) {
        ::sigwaitinfo(&children, nullptr);
        while (::waitpid(-1, nullptr, WNOHANG) > 0) {
        }
    }
}

}  // namespace

ProcessNamespace::ProcessNamespace()
{
    permitted(::unshare(CLONE_NEWPID), "making a process namespace");
    first_.emplace(runInitProcess);
    Channel &channel = first_->channel();
    if (!channel.receive() || !channel.send("go") || !channel.receive())
        throw std::runtime_error("the first process of the namespace has ended");
}

ProcessNamespace::~ProcessNamespace()
{
    ::kill(first_->id(), SIGKILL);
    // The namespace lasts until its last process is reaped, and the program may be a child of this one.
    for (pid_t child = 0; child != first_->id();) {
        child = ::waitpid(-1, nullptr, 0);
        if (child < 0 && errno == ECHILD)
            return;
    }
}

}  // namespace sim
