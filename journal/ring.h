// The last events of one board.
#ifndef SORVANE_JOURNAL_RING_H
#define SORVANE_JOURNAL_RING_H

#include "journal/event.h"

#include <deque>

namespace journal
{

class Ring
{
public:
    static constexpr std::size_t capacity = 65536;

    /// The next event, blank but for its number, to be filled in by the caller. When the ring is full it takes the
    /// oldest one's place, storage of its bytes included.
    Event &append();

    /// The numbers of the oldest and the newest that are kept; 1 and 0 while there is none.
    std::uint64_t first() const { return last_ - events_.size() + 1; }
    std::uint64_t last() const { return last_; }
    /// One from first() to last().
    const Event &at(std::uint64_t number) const { return events_[(number - 1) % capacity]; }

    /// How many of the events behind this number are gone already.
    std::uint64_t lostSince(std::uint64_t number) const { return first() > number + 1 ? first() - number - 1 : 0; }

private:
    std::deque<Event> events_;
    std::uint64_t last_ = 0;
};

}  // namespace journal

#endif
