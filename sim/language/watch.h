// Whether a condition has held on a board since a point in its journal.
#ifndef SORVANE_SIM_LANGUAGE_WATCH_H
#define SORVANE_SIM_LANGUAGE_WATCH_H

#include "sim/language/tracked.h"

namespace sim
{

/// How long a wait waits unless it is told.
constexpr Nanoseconds usualWait = std::chrono::seconds(5);

/// A point between two events of a board.
struct Point {
    std::uint64_t number = 0;  ///< of the last event before it
    Nanoseconds time{};
};

/// Both are called with the board's lock held, as all that follows.
Point pointNow(VirtualBoard &board);
/// Behind the event of this number.
Point pointBehind(VirtualBoard &board, std::uint64_t number);

/// About something that happens, and not about how the board is.
bool isAboutEvents(const ConditionReading &condition);

class Watch
{
public:
    /// The condition's names are resolved. Throws UsageError for what no board like this one has.
    Watch(ConditionReading condition, VirtualBoard &board, Point from);

    /// Reads on; true once the condition has held at any moment from the point to `until` (or to the present).
    bool look(VirtualBoard &board, Nanoseconds until = Nanoseconds::max());
    /// When it has to be looked at again although nothing rings: a time of the board's clock.
    std::optional<Nanoseconds> nextMoment(VirtualBoard &board) const;

    /// In a few lines: how it is instead, and the last events about it.
    std::string situation(VirtualBoard &board, const journal::Names &names) const;
    const std::string &text() const { return condition_.text; }

private:
    void begin(VirtualBoard &board, Point from);
    bool take(const journal::Event &event);
    bool isOperation(const journal::Event &event) const;
    bool isSent(const journal::Event &event);
    bool concerns(const journal::Event &event) const;

    ConditionReading condition_;
    std::optional<Tracked> tracked_;  // none for what happens
    TrackedState state_;
    Nanoseconds seenUpTo_{};
    std::uint64_t readUpTo_ = 0;
    std::uint64_t lost_ = 0;
    bool held_ = false;
    std::string sent_;  // that may be the beginning of what is waited for
};

}  // namespace sim

#endif
