// Waiting for a condition, and looking at one.
#include "sim/cabinet/event_names.h"
#include "sim/language/actions.h"
#include "sim/language/watch.h"

#include <array>
#include <poll.h>

namespace sim
{

namespace
{

constexpr int statusDoesNotHold = 3;

// Sleeps until the bell rings, whoever waits is gone, or the time is over. False when nobody waits any more.
bool sleepUntil(Nanoseconds moment, const Clock &clock, const Bell::Listener &bell, Listener *client)
{
    const Nanoseconds left = std::max(moment - clock.now(), Nanoseconds::zero());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec time{static_cast<time_t>(seconds.count()), static_cast<long>((left - seconds).count())};
    std::array<pollfd, 2> waited{{{bell.descriptor(), POLLIN, 0}, {client ? client->descriptor() : -1, POLLRDHUP, 0}}};
    ::ppoll(waited.data(), waited.size(), &time, nullptr);
    return waited[1].revents == 0;
}

std::string lasting(Nanoseconds time)
{
    const auto milliseconds = time / std::chrono::milliseconds(1);
    return milliseconds % 1000 == 0 ? std::to_string(milliseconds / 1000) + "s" : std::to_string(milliseconds) + "ms";
}

// From which point on a wait looks at the only board that is meant.
Point beginOf(const Call &call, VirtualBoard &board)
{
    if (call.reading.has("--since"))
        return pointBehind(board, call.reading["--since"].number);
    const auto known = call.session.since.find(call.devices.front());
    return known == call.session.since.end() ? pointNow(board) : pointBehind(board, known->second);
}

}  // namespace

void checkWait(const Reading &reading)
{
    const ConditionReading &condition = *reading["CONDITION"].condition;
    if (condition.negated && isAboutEvents(condition))
        throw UsageError("\"" + condition.text + "\" would hold at once; allowed with not is how a board is");
}

void checkExpect(const Reading &reading)
{
    const ConditionReading &condition = *reading["CONDITION"].condition;
    if (isAboutEvents(condition))
        throw UsageError("\"" + condition.text +
                         "\" happens, and this looks at how the board is now; allowed for it is wait");
}

Outcome waitForCondition(Call &call)
{
    const std::shared_ptr<VirtualBoard> board = call.session.boards.hold(onlyDevice(call));
    const Bell::Listener bell(call.session.boards.bell());
    const Nanoseconds most = call.reading.has("within") ? call.reading["within"].time : usualWait;
    std::optional<Watch> watch;
    Nanoseconds deadline{};
    for (;;) {
        Nanoseconds next{};
        {
            bell.heard();
            const auto lock = board->lock();
            if (!watch) {
                deadline = pointNow(*board).time + most;
                watch.emplace(*call.reading["CONDITION"].condition, *board, beginOf(call, *board));
            }
            if (watch->look(*board, deadline))
                return {};
            if (board->timeline().now() >= deadline)
                return {.status = statusDoesNotHold,
                        .error = "\"" + watch->text() + "\" did not hold within " + lasting(most) + "\n" +
                                 watch->situation(*board, cabinet::eventNames(call.session.cabinet))};
            next = std::min(watch->nextMoment(*board).value_or(deadline), deadline);
        }
        if (!sleepUntil(next, board->timeline().clock(), bell, call.session.listener))
            return {.status = 1, .error = "nobody waits any more"};
    }
}

Outcome expectCondition(Call &call)
{
    const std::shared_ptr<VirtualBoard> board = call.session.boards.hold(onlyDevice(call));
    const auto lock = board->lock();
    Watch watch(*call.reading["CONDITION"].condition, *board, pointNow(*board));
    if (watch.look(*board))
        return {};
    return {.status = statusDoesNotHold,
            .error = "\"" + watch.text() + "\" does not hold\n" +
                     watch.situation(*board, cabinet::eventNames(call.session.cabinet))};
}

}  // namespace sim
