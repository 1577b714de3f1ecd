#include "journal/ring.h"

#include <utility>

namespace journal
{

namespace
{

// What a whole memory once needed is not kept for the next short answer.
constexpr std::size_t storageKept = 512;

std::string emptied(std::string &text)
{
    if (text.capacity() > storageKept)
        return {};
    text.clear();
    return std::move(text);
}

}  // namespace

Event &Ring::append()
{
    Event &event = events_.size() < capacity ? events_.emplace_back() : events_[last_ % capacity];
    std::string before = emptied(event.before);
    std::string bytes = emptied(event.bytes);
    event = Event();
    event.before = std::move(before);
    event.bytes = std::move(bytes);
    event.number = ++last_;
    return event;
}

}  // namespace journal
