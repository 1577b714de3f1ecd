// Reads what happens on virtual boards as it happens, from a place in their journals on.
#ifndef SORVANE_SIM_JOURNAL_EVENT_READER_H
#define SORVANE_SIM_JOURNAL_EVENT_READER_H

#include "journal/json_lines.h"
#include "sim/board/virtual_boards.h"

#include <map>

namespace sim
{

/// Every board of these, by device number.
std::vector<int> allBoards(const VirtualBoards &boards);

/// The same as a journal tells of them in front.
std::vector<journal::HeaderBoard> headerBoards(const VirtualBoards &boards);

class EventReader
{
public:
    /// Begins behind event `since` of each of the boards; 0 is with the oldest that is kept.
    EventReader(VirtualBoards &boards, const std::vector<int> &devices, std::uint64_t since = 0);

    struct Batch {
        std::vector<journal::Event> events;  ///< in the order of their times
        std::uint64_t lost = 0;              ///< that were gone from the journals before they were read
    };
    /// What has come since the last time, some thousands a board at most; empty when there is nothing new.
    Batch read();

    /// Sleeps until something may have come, the other side of the socket or pipe `other` (-1: none) closes, or the
    /// time is over. False when it was `other`.
    bool wait(int other, std::optional<Nanoseconds> most = std::nullopt);

private:
    std::optional<Nanoseconds> untilNextDue();

    VirtualBoards &boards_;
    Bell::Listener listener_;
    std::map<int, std::uint64_t> readUpTo_;
};

}  // namespace sim

#endif
