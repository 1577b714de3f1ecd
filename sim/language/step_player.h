// Plays the steps of a run beside its program, and judges.
#ifndef SORVANE_SIM_LANGUAGE_STEP_PLAYER_H
#define SORVANE_SIM_LANGUAGE_STEP_PLAYER_H

#include "sim/language/steps.h"
#include "sim/language/watch.h"

#include <array>
#include <atomic>
#include <thread>

namespace sim
{

/// Of a run whose program did not do what the steps expect.
constexpr int statusOfFailedSteps = 123;

enum class Verdict { Passed, Stopped, Failed };

class StepPlayer
{
public:
    /// The first step judges from here on. Steps and session outlive it; a signal is for the program.
    StepPlayer(const Steps &steps, Session &session, Nanoseconds grace, std::function<void(int signal)> signalProgram);
    StepPlayer(const StepPlayer &) = delete;
    StepPlayer &operator=(const StepPlayer &) = delete;
    ~StepPlayer();

    /// Plays in a thread of its own. A step that fails is told on standard error and ends the program.
    void start();

    /// For when the program has ended, or is about to: what was not reached fails, and the boards are looked at as they
    /// were left. May be called in a signal handler, and waits no longer than this; what is not judged by then fails.
    Verdict end(std::chrono::milliseconds most);

private:
    using Points = std::map<int, Point>;

    struct Forbidden {
        std::shared_ptr<VirtualBoard> board;
        Watch watch;
        std::string where;
    };

    void play();
    void carryOut(const Step &step);
    void act(const Step &step);
    void waitFor(const Step &step);
    void pause(Nanoseconds time);
    void stop(int signal);
    void expect(const Step &step);
    void forbid(const Step &step);
    Points pointsNow() const;
    void lookAtForbidden();
    void judgeEnd();
    void sleepUntil(Nanoseconds moment, bool watching);
    void sleepUntilEnd();
    Nanoseconds now() const { return session_.boards.clock().now(); }

    const Steps &steps_;
    Session &session_;
    Nanoseconds grace_;
    std::function<void(int signal)> signalProgram_;
    Bell::Listener bell_;
    Points previousStep_;  // where the step before this one began
    Points thisStep_;
    std::vector<Forbidden> forbidden_;
    std::atomic<Verdict> verdict_ = Verdict::Passed;
    bool ended_ = false;         // the program, as the thread knows it
    std::array<int, 2> end_{};   // a pipe, whose writing end is closed when the program has ended
    std::array<int, 2> done_{};  // the same when the thread has
    std::thread thread_;
};

}  // namespace sim

#endif
