#include "sim/language/watch.h"

#include "protocol/families.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr std::size_t eventsShown = 5;

const journal::Event *lastExchangeBefore(const journal::Ring &events, std::uint64_t number)
{
    for (; number >= events.first() && number > 0; --number) {
        if (events.at(number).kind == journal::Kind::Exchange)
            return &events.at(number);
    }
    return nullptr;
}

}  // namespace

Point pointNow(VirtualBoard &board)
{
    const std::uint64_t last = board.events().last();
    return {last, board.timeline().now()};
}

Point pointBehind(VirtualBoard &board, std::uint64_t number)
{
    const journal::Ring &events = board.events();
    if (number > events.last())
        return pointNow(board);
    return {number, number >= events.first() && number > 0 ? events.at(number).time : Nanoseconds::zero()};
}

bool isAboutEvents(const ConditionReading &condition)
{
    const std::string name = condition.reading.row().name;
    return name == "serial" || name == "operation";
}

Watch::Watch(ConditionReading condition, VirtualBoard &board, Point from) : condition_(std::move(condition))
{
    if (!isAboutEvents(condition_))
        tracked_.emplace(condition_, board);
    begin(board, from);
}

// How it was at the point follows from how it is now, walking back. What is not kept any more nobody knows: then the
// oldest that is kept is the point.
void Watch::begin(VirtualBoard &board, Point from)
{
    const journal::Ring &events = board.events();
    lost_ += events.lostSince(from.number);
    readUpTo_ = from.number + events.lostSince(from.number);
    seenUpTo_ = readUpTo_ > from.number ? events.at(events.first()).time : from.time;
    if (!tracked_)
        return;
    state_ = tracked_->now(board);
    for (std::uint64_t number = events.last(); number > readUpTo_; --number) {
        if (tracked_->isChangedBy(events.at(number)))
            tracked_->undo(events.at(number), state_);
    }
    const journal::Event *exchange = lastExchangeBefore(events, readUpTo_);
    state_.lastExchange = exchange ? exchange->time : events.first() > 1 ? seenUpTo_ : Nanoseconds::zero();
}

bool Watch::look(VirtualBoard &board, Nanoseconds until)
{
    const journal::Ring &events = board.events();
    if (events.lostSince(readUpTo_) > 0)
        begin(board, {readUpTo_, seenUpTo_});
    while (!held_ && readUpTo_ < events.last() && events.at(readUpTo_ + 1).time <= until)
        held_ = take(events.at(++readUpTo_));
    if (held_ || !tracked_)
        return held_;
    const Nanoseconds end = std::min(board.timeline().now(), until);
    held_ = tracked_->holds(state_, seenUpTo_, end);
    seenUpTo_ = std::max(seenUpTo_, end);
    return held_;
}

bool Watch::take(const journal::Event &event)
{
    if (!tracked_)
        return isOperation(event) || isSent(event);
    if (!tracked_->isChangedBy(event))
        return false;
    if (tracked_->holds(state_, seenUpTo_, event.time - Nanoseconds(1)))
        return true;
    tracked_->redo(event, state_);
    seenUpTo_ = event.time;
    return false;
}

bool Watch::isOperation(const journal::Event &event) const
{
    if (event.kind != journal::Kind::Exchange || !condition_.reading.has("NAME"))
        return false;
    const protocol::Exchange exchange = exchangeOf(event);
    const protocol::Operation *operation =
        protocol::findOperation(exchange.model, exchange.pipe, exchange.request, exchange.payload);
    const std::string &name = condition_.reading["NAME"].word;
    return operation && (operation->name == name || operation->isSentBy(name));
}

bool Watch::isSent(const journal::Event &event)
{
    if (event.kind != journal::Kind::Sent || !condition_.reading.has("PORT") ||
        event.part != condition_.reading["PORT"].number)
        return false;
    const Bytes &bytes = condition_.reading["\"TEXT\""].bytes;
    const std::string wanted(bytes.begin(), bytes.end());
    sent_ += event.bytes;
    if (sent_.find(wanted) != std::string::npos)
        return true;
    sent_.erase(0, sent_.size() - std::min(sent_.size(), wanted.size() - 1));
    return false;
}

std::optional<Nanoseconds> Watch::nextMoment(VirtualBoard &board) const
{
    std::optional<Nanoseconds> next = board.timeline().nextDue();
    const std::optional<Nanoseconds> own =
        tracked_ ? tracked_->mayHoldAt(state_, board.timeline().now()) : std::nullopt;
    if (own && (!next || *own < *next) && *own > board.timeline().now())
        next = own;
    return next;
}

bool Watch::concerns(const journal::Event &event) const
{
    if (tracked_)
        return tracked_->isChangedBy(event);
    if (condition_.reading.has("NAME"))
        return event.kind == journal::Kind::Exchange;
    return event.kind == journal::Kind::Sent && event.part == condition_.reading["PORT"].number;
}

std::string Watch::situation(VirtualBoard &board, const journal::Names &names) const
{
    const journal::Ring &events = board.events();
    std::string lines;
    std::size_t shown = 0;
    for (std::uint64_t number = events.last(); number >= events.first() && number > 0 && shown < eventsShown;
         --number) {
        if (concerns(events.at(number))) {
            lines.insert(0, "  " + lineOf(events.at(number), names) + "\n");
            ++shown;
        }
    }
    std::string text;
    if (tracked_)
        text += "  now: " + tracked_->textOf(state_, board.timeline().now(), names) + "\n";
    text +=
        lines.empty() ? "  nothing has happened to it so far\n" : "  what happened to it last, in seconds:\n" + lines;
    if (lost_ > 0)
        text += "  " + std::to_string(lost_) + " events were gone from the journal before they were looked at\n";
    text.pop_back();
    return text;
}

}  // namespace sim
