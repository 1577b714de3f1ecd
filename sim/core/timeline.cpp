#include "sim/core/timeline.h"

#include <algorithm>
#include <utility>

namespace sim
{

void Timeline::at(Nanoseconds when, const void *owner, std::function<void()> action)
{
    actions_.emplace(std::max(when, now_), Action{owner, std::move(action)});
}

void Timeline::after(Nanoseconds delay, const void *owner, std::function<void()> action)
{
    at(now_ + delay, owner, std::move(action));
}

void Timeline::cancel(const void *owner)
{
    std::erase_if(actions_, [owner](const auto &entry) { return entry.second.owner == owner; });
}

void Timeline::settle()
{
    if (settling_)
        return;
    settling_ = true;
    const Nanoseconds end = clock_->now();
    watcher_();
    while (!actions_.empty() && actions_.begin()->first <= end) {
        const auto next = actions_.extract(actions_.begin());
        now_ = next.key();
        next.mapped().run();
        watcher_();
    }
    now_ = std::max(now_, end);
    settling_ = false;
}

std::optional<Nanoseconds> Timeline::nextDue() const
{
    return actions_.empty() ? std::nullopt : std::optional(actions_.begin()->first);
}

}  // namespace sim
