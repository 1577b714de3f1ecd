#include "sim/board/polled_host.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr unsigned char largestOptionA = 3;
constexpr unsigned char largestOptionB = 4;
constexpr std::size_t headerLength = 13;
constexpr std::size_t longestMessage = 25;
constexpr Nanoseconds periodUnit = std::chrono::milliseconds(10);
constexpr Nanoseconds timeoutUnit = std::chrono::milliseconds(100);

Words toWords(const Bytes &bytes)
{
    return {bytes.begin(), bytes.end()};
}

}  // namespace

PolledHost::PolledHost(Timeline &timeline, std::size_t largestAnswer, std::function<void(const Words &)> send)
    : timeline_(timeline), largestPart_(largestAnswer - 2), send_(std::move(send))
{
}

Reply PolledHost::configure(Payload payload)
{
    const std::size_t length1 = payload[11];
    const std::size_t length2 = payload[12];
    if (payload[1] > largestOptionA || payload[2] > largestOptionB || std::max(length1, length2) > longestMessage)
        return refuse(statusWrongValue);
    if (payload.size() != headerLength + length1 + length2)
        return refuse(statusWrongLength);
    return perform([this, payload, length1, length2] {
        const unsigned int number = payload[0];
        Slot slot;
        slot.messages = {toBytes(payload.subspan(headerLength, length1)),
                         toBytes(payload.subspan(headerLength + length1, length2))};
        slot.polling = length1 + length2 > 0;
        slot.lengthIndex = payload[4];
        slot.lengthExtra = payload[5];
        slot.period = std::max(payload[6] * periodUnit, periodUnit);
        slot.timeout = slots_[number].timeout;
        slots_[number] = slot;
        if (asking_ == number)
            endAsking();
        pollLater(number, {});
    });
}

void PolledHost::pollLater(unsigned int number, Nanoseconds delay)
{
    const Slot *slot = &slots_[number];
    timeline_.cancel(slot);
    timeline_.after(delay, slot, [this, number] { poll(number); });
}

void PolledHost::poll(unsigned int number)
{
    Slot &slot = slots_[number];
    if (!slot.polling || slot.answers.size() >= pollSlotCapacity)
        return;
    // One question at a time on the line.
    if (asking_) {
        pollLater(number, periodUnit);
        return;
    }
    if (slot.messages[slot.nextMessage].empty())
        slot.nextMessage ^= 1;
    asking_ = number;
    send_(toWords(slot.messages[slot.nextMessage]));
    slot.nextMessage ^= 1;
    timeline_.after(std::max(slot.timeout, periodUnit), &incoming_, [this] { endPoll(false); });
}

void PolledHost::endAsking()
{
    asking_.reset();
    incoming_.clear();
    timeline_.cancel(&incoming_);
}

void PolledHost::endPoll(bool answered)
{
    const unsigned int number = *asking_;
    Slot &slot = slots_[number];
    slot.unanswered = !answered;
    if (answered)
        slot.answers.push_back(incoming_);
    endAsking();
    pollLater(number, slot.period);
}

bool PolledHost::take(std::uint16_t word)
{
    if (!asking_)
        return false;
    const Slot &slot = slots_[*asking_];
    incoming_.push_back(lowByte(word));
    if (incoming_.size() > slot.lengthIndex &&
        incoming_.size() >= std::size_t{slot.lengthExtra} + incoming_[slot.lengthIndex])
        endPoll(true);
    return true;
}

Reply PolledHost::receive(Slot &slot)
{
    if (slot.answers.empty())
        return tell({slot.unanswered ? polledNoAnswer : polledNothing, 0});
    const Payload rest = Payload(slot.answers.front()).subspan(slot.handedOut);
    const Payload part = rest.first(std::min(rest.size(), largestPart_));
    const bool last = part.size() == rest.size();
    Bytes bytes{polledMessage, lowByte(last ? 0 : 1)};
    append(bytes, part);
    return tell(bytes, [this, &slot, last, handedOut = slot.handedOut + part.size()] {
        slot.handedOut = handedOut;
        if (last)
            forget(slot, 1);
    });
}

// A slot that was full goes on polling.
void PolledHost::forget(Slot &slot, std::size_t count)
{
    const bool wasFull = slot.answers.size() >= pollSlotCapacity;
    const auto end = slot.answers.begin() + static_cast<std::ptrdiff_t>(std::min(count, slot.answers.size()));
    slot.answers.erase(slot.answers.begin(), end);
    slot.handedOut = 0;
    if (wasFull)
        pollLater(static_cast<unsigned int>(&slot - slots_.data()), slot.period);
}

std::optional<Reply> PolledHost::answer(Request request, Payload payload)
{
    const bool known = request == Request::ConfigurePollSlot || request == Request::EmptyPolledBuffer ||
                       request == Request::ReceivePolledMessage || request == Request::DeletePolledMessage ||
                       request == Request::SetPolledHostTimeout;
    if (!known)
        return std::nullopt;
    if (payload[0] >= pollSlotCount)
        return refuse(statusWrongValue);
    Slot &slot = slots_[payload[0]];
    switch (request) {
    case Request::ConfigurePollSlot:
        return configure(payload);
    case Request::ReceivePolledMessage:
        return receive(slot);
    case Request::SetPolledHostTimeout:
        return perform([&slot, timeout = payload[1] * timeoutUnit] { slot.timeout = timeout; });
    case Request::DeletePolledMessage:
        return perform([this, &slot] { forget(slot, 1); });
    default:
        return perform([this, &slot] { forget(slot, slot.answers.size()); });
    }
}

void PolledHost::powerLost()
{
    endAsking();
    for (Slot &slot : slots_) {
        timeline_.cancel(&slot);
        slot = Slot{};
    }
}

}  // namespace sim
