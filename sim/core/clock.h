// The time in which a virtual board lives. Nothing in a board sleeps: what has happened in the meantime is worked out
// from now() whenever somebody looks or an exchange arrives.
#ifndef SORVANE_SIM_CORE_CLOCK_H
#define SORVANE_SIM_CORE_CLOCK_H

#include <atomic>
#include <chrono>

namespace sim
{

using Nanoseconds = std::chrono::nanoseconds;

class Clock
{
public:
    virtual ~Clock() = default;

    /// Time since the clock was started; never runs backwards. May be called from any thread.
    virtual Nanoseconds now() const = 0;

    /// Lets the time pass, as a slow exchange does: a clock of the machine sleeps, a manual one advances at once.
    virtual void pass(Nanoseconds duration) = 0;
};

/// Stands still until it is advanced.
class ManualClock : public Clock
{
public:
    Nanoseconds now() const override { return Nanoseconds(time_.load()); }
    void pass(Nanoseconds duration) override { advance(duration); }
    void advance(Nanoseconds duration) { time_ += duration.count(); }

private:
    std::atomic<Nanoseconds::rep> time_ = 0;
};

/// The machine's monotonic clock.
class SteadyClock : public Clock
{
public:
    Nanoseconds now() const override { return std::chrono::steady_clock::now() - start_; }
    void pass(Nanoseconds duration) override;

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace sim

#endif
