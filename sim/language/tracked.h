// The one thing on a board that a condition is about, as a value that the board's journal changes.
#ifndef SORVANE_SIM_LANGUAGE_TRACKED_H
#define SORVANE_SIM_LANGUAGE_TRACKED_H

#include "sim/board/virtual_board.h"
#include "sim/language/reading.h"

namespace sim
{

/// How it is between two events.
struct TrackedState {
    bool plugged = true;
    std::uint32_t value = 0;     ///< as in the journal's events of its kind
    Bytes bytes{};               ///< of a memory
    Nanoseconds lastExchange{};  ///< for quiet
};

class Tracked
{
public:
    /// Of a condition whose names are resolved, and which is not about something that happens. Throws UsageError for
    /// what no board like this one has.
    Tracked(const ConditionReading &condition, VirtualBoard &board);

    TrackedState now(VirtualBoard &board) const;
    bool isChangedBy(const journal::Event &event) const;
    /// Back over an event, to how it was before, and onward.
    void undo(const journal::Event &event, TrackedState &state) const;
    void redo(const journal::Event &event, TrackedState &state) const;

    /// Whether the condition holds at any moment from `first` to `last`, over which the state stays.
    bool holds(const TrackedState &state, Nanoseconds first, Nanoseconds last) const;
    /// When it may come to hold although nothing happens; none when never.
    std::optional<Nanoseconds> mayHoldAt(const TrackedState &state, Nanoseconds now) const;

    /// "paid = 3", "unplugged".
    std::string textOf(const TrackedState &state, Nanoseconds now, const journal::Names &names) const;

private:
    bool compares(std::uint64_t value) const;
    bool isSo(const TrackedState &state) const;
    bool isLit(const TrackedState &state, bool wanted, Nanoseconds first, Nanoseconds last) const;
    bool isQuiet(const TrackedState &state, Nanoseconds first, Nanoseconds last) const;
    std::uint64_t meter(const Bytes &bytes) const;
    void put(const journal::Event &event, const std::string &from, Bytes &bytes) const;

    ConditionReading condition_;
    std::string name_;
    journal::Kind kind_ = journal::Kind::Plugged;
    journal::Aspect aspect_ = journal::Aspect::None;
    unsigned int part_ = 0;
    std::size_t size_ = 0;  // of a memory
    int device_ = 0;
};

}  // namespace sim

#endif
