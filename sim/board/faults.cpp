#include "sim/board/faults.h"

#include <algorithm>

namespace sim
{

namespace
{

bool concerns(const Fault &fault, unsigned char request, int pipe)
{
    return (fault.request == 0 || fault.request == request) && (fault.pipe == 0 || fault.pipe == pipe);
}

}  // namespace

Fault Fault::answer(Bytes bytes)
{
    Fault fault(Kind::Replace, 0);
    fault.bytes = std::move(bytes);
    return fault;
}

Fault Fault::slow(Nanoseconds delay)
{
    Fault fault(Kind::Delay, 0);
    fault.delay = delay;
    return fault;
}

Fault &Fault::on(unsigned char code, int onPipe)
{
    request = code;
    pipe = onPipe;
    return *this;
}

Fault &Fault::skip(unsigned int n)
{
    skips = n;
    return *this;
}

Fault &Fault::times(unsigned int n)
{
    count = n;
    return *this;
}

Fault &Fault::forever()
{
    count.reset();
    return *this;
}

Fault &Fault::carriedOut()
{
    boardSaw = true;
    return *this;
}

std::string textOf(const Fault &fault)
{
    const std::string number = std::to_string(fault.number);
    switch (fault.kind) {
    case Fault::Kind::IoctlResult:
        return "ioctl " + std::to_string(std::abs(fault.number));
    case Fault::Kind::Status:
        return "status " + number;
    case Fault::Kind::AtMost:
        return "short " + number;
    case Fault::Kind::AtLeast:
        return "long " + number;
    case Fault::Kind::PacketCount:
        return "count " + number;
    case Fault::Kind::Echo:
        return "echo " + number;
    case Fault::Kind::Replace:
        return "another answer";
    case Fault::Kind::Unplug:
        return "unplug";
    case Fault::Kind::Delay:
        return "slow " + std::to_string(fault.delay / std::chrono::milliseconds(1)) + "ms";
    }
    return "";
}

std::optional<Fault> Faults::find(unsigned char request, int pipe) const
{
    for (const Fault &fault : queue_) {
        if (fault.kind != Fault::Kind::Delay && fault.skips == 0 && concerns(fault, request, pipe))
            return fault;
    }
    return std::nullopt;
}

void Faults::clear()
{
    ++delaysCalledOff_;
    queue_.clear();
}

void Faults::removeDelays()
{
    ++delaysCalledOff_;
    std::erase_if(queue_, [](const Fault &fault) { return fault.kind == Fault::Kind::Delay; });
}

void Faults::countDown(const std::deque<Fault>::iterator &fault)
{
    if (fault->count && --*fault->count == 0)
        queue_.erase(fault);
}

void Faults::passed(unsigned char request, int pipe)
{
    auto struck = queue_.end();
    for (auto fault = queue_.begin(); fault != queue_.end(); ++fault) {
        if (fault->kind == Fault::Kind::Delay || !concerns(*fault, request, pipe))
            continue;
        if (fault->skips > 0)
            --fault->skips;
        else if (struck == queue_.end())
            struck = fault;
    }
    if (struck != queue_.end())
        countDown(struck);
}

Nanoseconds Faults::takeDelay(unsigned char request, int pipe)
{
    const auto slow = std::find_if(queue_.begin(), queue_.end(), [request, pipe](const Fault &fault) {
        return fault.kind == Fault::Kind::Delay && concerns(fault, request, pipe);
    });
    if (slow == queue_.end())
        return {};
    if (slow->skips > 0) {
        --slow->skips;
        return {};
    }
    const Nanoseconds delay = slow->delay;
    countDown(slow);
    return delay;
}

}  // namespace sim
