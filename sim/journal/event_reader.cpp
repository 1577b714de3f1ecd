#include "sim/journal/event_reader.h"

#include <algorithm>
#include <poll.h>

namespace sim
{

namespace
{

constexpr std::uint64_t largestBatch = 4096;

timespec timeOf(Nanoseconds duration)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration);
    timespec time{};
    time.tv_sec = static_cast<time_t>(seconds.count());
    time.tv_nsec = static_cast<long>((duration - seconds).count());
    return time;
}

}  // namespace

std::vector<int> allBoards(const VirtualBoards &boards)
{
    std::vector<int> devices;
    for (int deviceNo = 0; deviceNo < deviceCount; ++deviceNo) {
        if (boards.find(deviceNo))
            devices.push_back(deviceNo);
    }
    return devices;
}

std::vector<journal::HeaderBoard> headerBoards(const VirtualBoards &boards)
{
    std::vector<journal::HeaderBoard> all;
    for (const int device : allBoards(boards)) {
        const std::shared_ptr<VirtualBoard> board = boards.hold(device);
        all.push_back({device, static_cast<protocol::Model>(board->model()), board->isHighSpeed()});
    }
    return all;
}

EventReader::EventReader(VirtualBoards &boards, const std::vector<int> &devices, std::uint64_t since)
    : boards_(boards), listener_(boards.bell())
{
    for (const int device : devices)
        readUpTo_[device] = since;
}

EventReader::Batch EventReader::read()
{
    Batch batch;
    listener_.heard();
    for (auto &[device, readUpTo] : readUpTo_) {
        const std::shared_ptr<VirtualBoard> board = boards_.hold(device);
        if (!board)
            continue;
        const auto lock = board->lock();
        const journal::Ring &events = board->events();
        batch.lost += events.lostSince(readUpTo);
        readUpTo += events.lostSince(readUpTo);
        const std::uint64_t end = std::min(events.last(), readUpTo + largestBatch);
        for (std::uint64_t number = readUpTo + 1; number <= end; ++number)
            batch.events.push_back(events.at(number));
        readUpTo = std::max(readUpTo, end);
    }
    std::stable_sort(batch.events.begin(), batch.events.end(),
                     [](const journal::Event &one, const journal::Event &other) { return one.time < other.time; });
    return batch;
}

// Nothing on a board happens by itself before somebody looks.
std::optional<Nanoseconds> EventReader::untilNextDue()
{
    std::optional<Nanoseconds> soonest;
    for (const auto &[device, readUpTo] : readUpTo_) {
        const std::shared_ptr<VirtualBoard> board = boards_.hold(device);
        if (!board)
            continue;
        const auto lock = board->lock();
        if (board->events().last() > readUpTo)
            return Nanoseconds::zero();
        const std::optional<Nanoseconds> due = board->timeline().nextDue();
        if (due && (!soonest || *due - board->timeline().now() < *soonest))
            soonest = std::max(*due - board->timeline().now(), Nanoseconds::zero());
    }
    return soonest;
}

bool EventReader::wait(int other, std::optional<Nanoseconds> most)
{
    std::optional<Nanoseconds> sleep = untilNextDue();
    if (most && (!sleep || *most < *sleep))
        sleep = most;
    const timespec time = timeOf(sleep.value_or(Nanoseconds::zero()));
    std::array<pollfd, 2> waited{{{listener_.descriptor(), POLLIN, 0}, {other, POLLRDHUP, 0}}};
    ::ppoll(waited.data(), waited.size(), sleep ? &time : nullptr, nullptr);
    return waited[1].revents == 0;
}

}  // namespace sim
