// Follows the threads of traced programs from stop to stop, through fork, clone and exec, and hands on their exchanges.
// Whatever else makes them stop passes as if nobody were there: signals, job control, ends.
#ifndef SORVANE_TOOLS_TRACE_TRACER_H
#define SORVANE_TOOLS_TRACE_TRACER_H

#include "tools/trace/exchange_reader.h"

#include <functional>
#include <set>

namespace trace
{

/// What a program that is not held up by anything else stops at.
enum class Stops {
    DriverCalls,  ///< by the filter that lies on it
    EveryCall     ///< for want of a filter: only a program itself can lay one on itself
};

class Tracer
{
public:
    struct Listener {
        std::function<void(journal::Event &&)> exchange;  ///< device, number and time are set, in the order of the ends
        std::function<void(pid_t process)> executed;      ///< it has just become another program
        std::function<void(int signal)> signalled;        ///< this process got a signal
    };

    Tracer(Stops stops, Listener listener);

    /// Traces a thread from now on, and whatever it starts. False where the system forbids it, with the reason in
    /// errno.
    bool seize(pid_t thread);
    bool follows(pid_t thread) const { return followed_.contains(thread); }
    /// Makes a thread stop that has been seized in the middle of something.
    void interrupt(pid_t thread);

    /// Until all that is followed has ended or been let go. Every signal of this process is blocked, SIGCHLD too. Where
    /// `program` is stopped as a job, this process stops as well, and the shell that started it sees that.
    void follow(pid_t program);
    /// From inside follow(): lets everything run on by itself; an exchange under way is waited for.
    void letGo();
    /// The same at once and without letting go: what is still followed ends with this process.
    void stop() { stopped_ = true; }

    std::size_t following() const { return followed_.size(); }
    /// Of the program that follow() was called for; nothing until it has ended.
    std::optional<int> programStatus() const { return programStatus_; }

private:
    struct Followed {
        pid_t process = 0;  ///< found when somebody wants to know
        std::optional<Begun> begun;
    };

    void takeStops();
    void handle(pid_t thread, int status);
    void handleEvent(pid_t thread, int event, int signal);
    void atCall(pid_t thread);
    void begin(pid_t thread, const DriverCall &call);
    void finish(pid_t thread, std::int64_t result);
    void hasExecuted(pid_t thread);
    void hasStarted(pid_t child);
    void hasEnded(pid_t thread, int status);
    void abandon(Followed &followed);
    void resume(pid_t thread, int signal = 0);
    void stopAsTheProgram();

    Stops stops_;
    Listener listener_;
    ExchangeReader reader_;
    std::chrono::steady_clock::time_point start_;
    std::map<pid_t, Followed> followed_;
    std::set<pid_t> unannounced_;  ///< came to be seen before their parents told of them
    std::map<int, std::uint64_t> numbers_;
    pid_t program_ = 0;
    std::optional<int> programStatus_;
    int jobStop_ = 0;
    bool lettingGo_ = false;
    bool stopped_ = false;
};

}  // namespace trace

#endif
