#include "sim/system/program.h"

#include "sim/system/failure.h"
#include "sim/system/process_namespace.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace sim
{

namespace
{

constexpr int cannotExecute = 126;
constexpr int notFound = 127;

int takeSignal(const timespec *atMost = nullptr)
{
    sigset_t all;
    ::sigfillset(&all);
    int signal;
    do
        signal = atMost ? ::sigtimedwait(&all, nullptr, atMost) : ::sigwaitinfo(&all, nullptr);
    while (signal < 0 && errno == EINTR);
    return signal;
}

// What came during the start is the program's as well. It waits with every signal blocked, where one that it got by
// itself and the same one from here become one.
void passOnEarlySignals(pid_t program, ProcessGroupMember &groupMember)
{
    const timespec atOnce{};
    for (int signal; (signal = takeSignal(&atOnce)) > 0;) {
        if (signal == SIGCHLD)
            continue;
        groupMember.alsoReceived(signal);
        ::kill(program, signal);
    }
}

bool isTerminalStop(int signal)
{
    return signal == SIGTSTP || signal == SIGTTIN || signal == SIGTTOU;
}

// Takes note of children; nothing until the program has ended.
std::optional<int> lookAfterChildren(pid_t program, const Supervision &supervision)
{
    int status = 0;
    for (pid_t child; (child = ::waitpid(-1, &status, WNOHANG | WUNTRACED)) > 0;) {
        if (child == program && WIFSTOPPED(status)) {
            // The shell is to see the job stop; its fg wakes the whole group.
            if (isTerminalStop(WSTOPSIG(status)))
                ::kill(::getpid(), SIGSTOP);
        } else if (child == program) {
            return status;
        } else if (supervision.boards && child == supervision.boards->id()) {
            std::fprintf(stderr, "sorvane-sim: the process that serves the boards has ended\n");
        }
    }
    return std::nullopt;
}

int waitForProgram(pid_t program, const Supervision &supervision)
{
    for (;;) {
        const int signal = takeSignal();
        if (signal == SIGCHLD) {
            if (const std::optional<int> status = lookAfterChildren(program, supervision))
                return *status;
        } else if (!supervision.groupMember.alsoReceived(signal)) {
            ::kill(program, signal);
        }
    }
}

}  // namespace

int runProgram(const std::vector<std::string> &words, Supervision supervision)
{
    ProcessNamespace processes;
    ChildProcess program([&](Channel start) {
        if (!start.receive())
            ::_exit(statusOfFailure);
        supervision.blocked.restore();
        execute(words);
    });
    closeAllBut({program.channel().fd(), supervision.groupMember.channel(), processes.channel(),
                 supervision.boards ? supervision.boards->channel().fd() : -1, supervision.watched});
    passOnEarlySignals(program.id(), supervision.groupMember);
    // Whoever serves the boards may end the program, and no other that gets its number afterwards.
    const OwnedFd process(static_cast<int>(::syscall(SYS_pidfd_open, program.id(), 0)));
    if (supervision.boards)
        supervision.boards->channel().send("start", process.get());
    program.channel().send("start");
    program.channel().close();
    // A pipe of the caller ends when the program lets go of it.
    redirectToNull(0);
    redirectToNull(1);
    return waitForProgram(program.id(), supervision);
}

int waitForEndingSignal()
{
    for (;;) {
        const int signal = takeSignal();
        if (signal == SIGINT || signal == SIGTERM || signal == SIGHUP || signal == SIGQUIT)
            return signal;
    }
}

std::string findProgram(const std::string &name)
{
    if (name.find('/') != std::string::npos)
        return name;
    const char *path = std::getenv("PATH");
    std::istringstream folders(path ? path : "/bin:/usr/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string candidate = (folder.empty() ? "." : folder) + "/" + name;
        if (::access(candidate.c_str(), X_OK) == 0)
            return candidate;
    }
    return "";
}

void execute(const std::vector<std::string> &words)
{
    std::vector<char *> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    ::execvp(arguments[0], arguments.data());
    const int error = errno;
    std::fprintf(stderr, "%s: %s: %s\n", program_invocation_short_name, arguments[0], std::strerror(error));
    ::_exit(error == ENOENT || error == ENOTDIR ? notFound : cannotExecute);
}

void endLike(int waitStatus)
{
    if (WIFSIGNALED(waitStatus)) {
        const int signal = WTERMSIG(waitStatus);
        const rlimit none{};
        ::setrlimit(RLIMIT_CORE, &none);  // the program has dumped its own
        ::signal(signal, SIG_DFL);
        sigset_t only;
        ::sigemptyset(&only);
        ::sigaddset(&only, signal);
        ::sigprocmask(SIG_UNBLOCK, &only, nullptr);
        ::raise(signal);
        ::_exit(128 + signal);
    }
    ::_exit(WEXITSTATUS(waitStatus));
}

}  // namespace sim
