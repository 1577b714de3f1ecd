// What is going to happen on a board, in order. A part schedules an action; settle() carries out everything that has
// become due, each at its own time, so that it does not matter how seldom somebody looks.
#ifndef SORVANE_SIM_CORE_TIMELINE_H
#define SORVANE_SIM_CORE_TIMELINE_H

#include "sim/core/clock.h"

#include <functional>
#include <map>
#include <optional>

namespace sim
{

class Timeline
{
public:
    explicit Timeline(Clock &clock) : clock_(&clock), now_(clock.now()) {}
    Timeline(const Timeline &) = delete;
    Timeline &operator=(const Timeline &) = delete;

    /// The time of the action that is being carried out; between two settles, the time of the last one.
    Nanoseconds now() const { return now_; }
    Clock &clock() const { return *clock_; }

    /// The action happens at a time, at once if that is past; owner is only for cancel().
    void at(Nanoseconds when, const void *owner, std::function<void()> action);
    void after(Nanoseconds delay, const void *owner, std::function<void()> action);
    void cancel(const void *owner);

    /// Carries out what is due. From inside an action it does nothing.
    void settle();

    /// Called when a settle begins and after each of its actions, while now() is still the time of what came before: so
    /// it sees each thing that happens by itself, at its time.
    void watch(std::function<void()> watcher) { watcher_ = std::move(watcher); }

    /// When the next action is due.
    std::optional<Nanoseconds> nextDue() const;

private:
    struct Action {
        const void *owner;
        std::function<void()> run;
    };

    Clock *clock_;
    Nanoseconds now_;
    std::multimap<Nanoseconds, Action> actions_;
    std::function<void()> watcher_ = [] {};
    bool settling_ = false;
};

}  // namespace sim

#endif
