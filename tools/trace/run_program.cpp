#include "sim/system/failure.h"
#include "sim/system/program.h"
#include "tools/trace/run.h"
#include "tools/trace/tracer.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace trace
{

namespace
{

bool givesMoreRights(const std::string &file)
{
    struct stat attributes = {};
    if (::stat(file.c_str(), &attributes) != 0 || !S_ISREG(attributes.st_mode))
        return false;
    return (attributes.st_mode & (S_ISUID | S_ISGID)) != 0 ||
           ::getxattr(file.c_str(), "security.capability", nullptr, 0) > 0;
}

void refuseWhatCannotBeTraced(const std::string &program)
{
    const char *libraries = std::getenv("LD_PRELOAD");
    if (libraries && std::strstr(libraries, "libsorvane_sim_preload"))
        throw Obstacle{"the boards of this run are inside the program (sorvane-sim run --how preload): no exchange "
                       "reaches the kernel, so there is nothing to trace",
                       "put them behind device nodes: sorvane-sim run --how node ... -- sorvane trace -- " + program};
    if (givesMoreRights(sim::findProgram(program)))
        throw Obstacle{program + " has rights of its own (set-user-ID, set-group-ID or file capabilities), which a "
                                 "traced program does not get",
                       "trace what it starts, or start it first and attach as root: sorvane trace -p PID"};
}

[[noreturn]] void become(const std::vector<std::string> &words, const sim::BlockedSignals &blocked)
{
    if (!layFilter()) {
        std::fprintf(stderr, "sorvane: this kernel takes no filter of system calls (seccomp): %s\n",
                     std::strerror(errno));
        ::_exit(sim::statusOfFailure);
    }
    blocked.restore();
    sim::execute(words);
}

// What came during the start is the program's as well.
void passOnEarlySignals(pid_t program, sim::ProcessGroupMember &groupMember)
{
    sigset_t all;
    ::sigfillset(&all);
    const timespec atOnce{};
    for (int signal; (signal = ::sigtimedwait(&all, nullptr, &atOnce)) > 0;) {
        if (signal == SIGCHLD)
            continue;
        groupMember.alsoReceived(signal);
        ::kill(program, signal);
    }
}

bool ends(int signal)
{
    return signal == SIGINT || signal == SIGTERM || signal == SIGHUP || signal == SIGQUIT;
}

}  // namespace

int traceProgram(const std::vector<std::string> &words, const OnExchange &exchange, const OnNote &note)
{
    refuseWhatCannotBeTraced(words.front());
    const sim::BlockedSignals blocked;
    sim::ProcessGroupMember groupMember;
    sim::ChildProcess program([&](sim::Channel start) {
        if (!start.receive())
            ::_exit(sim::statusOfFailure);
        become(words, blocked);
    });
    Tracer *following = nullptr;
    Tracer::Listener listener;
    listener.exchange = exchange;
    listener.executed = [&note](pid_t process) {
        const std::string link = "/proc/" + std::to_string(process) + "/exe";
        if (givesMoreRights(link))
            note("process " + std::to_string(process) + " is traced and so does not get the rights of its program");
    };
    listener.signalled = [&](int signal) {
        if (groupMember.alsoReceived(signal))
            return;
        if (!following->programStatus())
            ::kill(program.id(), signal);
        else if (ends(signal))
            following->stop();
    };
    Tracer tracer(Stops::DriverCalls, std::move(listener));
    following = &tracer;
    if (!tracer.seize(program.id())) {
        const std::string reason = std::strerror(errno);
        throw Obstacle{"this system lets no program be traced: " + reason,
                       "a container needs --cap-add SYS_PTRACE; kernel.yama.ptrace_scope must not be 3"};
    }
    passOnEarlySignals(program.id(), groupMember);
    program.channel().send("start");
    program.channel().close();
    // A pipe of the caller ends when the program lets go of it.
    sim::redirectToNull(STDIN_FILENO);
    sim::redirectToNull(STDOUT_FILENO);
    tracer.follow(program.id());
    return tracer.programStatus().value_or(sim::statusOfFailure << 8);
}

}  // namespace trace
