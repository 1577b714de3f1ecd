#include "tools/trace/tracer.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace trace
{

namespace
{

constexpr int systemCallStop = SIGTRAP | 0x80;

long command(int request, pid_t thread, unsigned long data = 0)
{
    return ::ptrace(static_cast<__ptrace_request>(request), thread, nullptr, reinterpret_cast<void *>(data));
}

pid_t messageOf(pid_t thread)
{
    unsigned long message = 0;
    command(PTRACE_GETEVENTMSG, thread, reinterpret_cast<unsigned long>(&message));
    return static_cast<pid_t>(message);
}

pid_t processOf(pid_t thread)
{
    std::ifstream status("/proc/" + std::to_string(thread) + "/status");
    for (std::string word; status >> word;) {
        pid_t process = 0;
        if (word == "Tgid:" && status >> process)
            return process;
    }
    return thread;
}

bool isJobStop(int signal)
{
    return signal == SIGTSTP || signal == SIGTTIN || signal == SIGTTOU;
}

}  // namespace

Tracer::Tracer(Stops stops, Listener listener)
    : stops_(stops), listener_(std::move(listener)), start_(std::chrono::steady_clock::now())
{
}

bool Tracer::seize(pid_t thread)
{
    unsigned long options =
        PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE | PTRACE_O_TRACEEXEC;
    if (stops_ == Stops::DriverCalls)
        options |= PTRACE_O_TRACESECCOMP | PTRACE_O_EXITKILL;
    if (command(PTRACE_SEIZE, thread, options) != 0)
        return false;
    followed_[thread];
    return true;
}

void Tracer::interrupt(pid_t thread)
{
    command(PTRACE_INTERRUPT, thread);
}

void Tracer::follow(pid_t program)
{
    program_ = program;
    sigset_t all;
    ::sigfillset(&all);
    sigset_t others = all;
    ::sigdelset(&others, SIGCHLD);
    const timespec atOnce{};
    for (;;) {
        takeStops();
        if (jobStop_ != 0)
            stopAsTheProgram();
        // Threads that never rest do not keep the other signals waiting.
        for (int signal; (signal = ::sigtimedwait(&others, nullptr, &atOnce)) > 0;)
            listener_.signalled(signal);
        if (followed_.empty() || stopped_)
            return;
        if (const int signal = ::sigwaitinfo(&all, nullptr); signal > 0 && signal != SIGCHLD)
            listener_.signalled(signal);
    }
}

// All that wait, and only then one after the other: none is served twice while another waits.
void Tracer::takeStops()
{
    std::vector<std::pair<pid_t, int>> taken;
    int status = 0;
    for (pid_t thread; (thread = ::waitpid(-1, &status, WNOHANG | __WALL)) > 0;)
        taken.emplace_back(thread, status);
    for (const auto &[thread, state] : taken) {
        if (WIFSTOPPED(state))
            handle(thread, state);
        else
            hasEnded(thread, state);
    }
}

void Tracer::letGo()
{
    lettingGo_ = true;
    for (const auto &[thread, followed] : followed_)
        interrupt(thread);
}

void Tracer::handle(pid_t thread, int status)
{
    if (followed_.try_emplace(thread).second)
        unannounced_.insert(thread);
    const int signal = WSTOPSIG(status);
    const int event = status >> 16;
    if (signal == systemCallStop || event == PTRACE_EVENT_SECCOMP)
        atCall(thread);
    else if (event != 0)
        handleEvent(thread, event, signal);
    else
        resume(thread, signal);
}

void Tracer::handleEvent(pid_t thread, int event, int signal)
{
    if (event == PTRACE_EVENT_FORK || event == PTRACE_EVENT_VFORK || event == PTRACE_EVENT_CLONE)
        hasStarted(messageOf(thread));
    else if (event == PTRACE_EVENT_EXEC)
        hasExecuted(thread);
    const bool groupStop = event == PTRACE_EVENT_STOP && signal != SIGTRAP;
    if (!groupStop || lettingGo_)
        return resume(thread);
    // It stays stopped, and still hears the signal that wakes its group.
    command(PTRACE_LISTEN, thread);
    if (thread == program_ && isJobStop(signal))
        jobStop_ = signal;
}

void Tracer::atCall(pid_t thread)
{
    const std::optional<Stop> stop = stopOf(thread);
    if (!stop && errno != ESRCH)
        throw std::runtime_error("this kernel does not tell what a traced program asks of it; Linux 5.3 is needed");
    if (stop && stop->atExit)
        return finish(thread, stop->result);
    if (stop && stop->call && !lettingGo_)
        begin(thread, *stop->call);
    resume(thread);
}

void Tracer::begin(pid_t thread, const DriverCall &call)
{
    Followed &followed = followed_[thread];
    followed.begun = reader_.begin(thread, call);
    if (!followed.begun)
        return;
    if (followed.process == 0)
        followed.process = processOf(thread);
    followed.begun->event.process = followed.process;
    followed.begun->event.time = std::chrono::steady_clock::now() - start_;
}

// The program runs on before anybody is told.
void Tracer::finish(pid_t thread, std::int64_t result)
{
    Followed &followed = followed_[thread];
    std::optional<Begun> begun = std::exchange(followed.begun, std::nullopt);
    if (!begun)
        return resume(thread);
    begun->event.duration = std::chrono::steady_clock::now() - start_ - begun->event.time;
    reader_.finish(*begun, result);
    resume(thread);
    begun->event.number = ++numbers_[begun->event.device];
    listener_.exchange(std::move(begun->event));
}

// A thread that executes a program ends all others of its process and takes its process's number.
void Tracer::hasExecuted(pid_t thread)
{
    if (const pid_t former = messageOf(thread); former != thread) {
        abandon(followed_[thread]);
        followed_.erase(former);
    }
    followed_[thread] = {};
    listener_.executed(thread);
}

// The child may have been seen before, and may even have ended. It is 0 where its parent was killed meanwhile.
void Tracer::hasStarted(pid_t child)
{
    if (child != 0 && unannounced_.erase(child) == 0)
        followed_.try_emplace(child);
}

void Tracer::hasEnded(pid_t thread, int status)
{
    const auto ended = followed_.find(thread);
    if (ended == followed_.end())
        return;
    abandon(ended->second);
    followed_.erase(ended);
    if (thread == program_)
        programStatus_ = status;
}

// What becomes of an exchange whose caller was killed in it nobody gets to know.
void Tracer::abandon(Followed &followed)
{
    std::optional<Begun> begun = std::exchange(followed.begun, std::nullopt);
    if (!begun)
        return;
    begun->event.duration = std::chrono::steady_clock::now() - start_ - begun->event.time;
    reader_.finish(*begun, -EINTR);
    begun->event.number = ++numbers_[begun->event.device];
    listener_.exchange(std::move(begun->event));
}

// Where it was killed meanwhile, its end is told by itself.
void Tracer::resume(pid_t thread, int signal)
{
    const Followed &followed = followed_[thread];
    const auto number = static_cast<unsigned long>(signal);
    if (lettingGo_ && !followed.begun) {
        command(PTRACE_DETACH, thread, number);
        followed_.erase(thread);
    } else {
        const bool toTheNextCall = stops_ == Stops::EveryCall || followed.begun;
        command(toTheNextCall ? PTRACE_SYSCALL : PTRACE_CONT, thread, number);
    }
}

void Tracer::stopAsTheProgram()
{
    const int signal = std::exchange(jobStop_, 0);
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    struct sigaction before = {};
    ::sigaction(signal, &byDefault, &before);
    ::raise(signal);
    sigset_t only;
    ::sigemptyset(&only);
    ::sigaddset(&only, signal);
    ::sigprocmask(SIG_UNBLOCK, &only, nullptr);
    ::sigprocmask(SIG_BLOCK, &only, nullptr);
    ::sigaction(signal, &before, nullptr);
}

}  // namespace trace
