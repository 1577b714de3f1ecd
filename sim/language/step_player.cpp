#include "sim/language/step_player.h"

#include "sim/cabinet/event_names.h"
#include "sim/journal/event_reader.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace sim
{

namespace
{

constexpr char beforeItWasReached[] = "the program ended before it was reached\n";

// A step that does not hold, is not reached, or cannot be done. The text ends its line.
struct Failure {
    std::string where;
    std::string text;
};

void tell(const Failure &failure)
{
    std::fputs((failure.where + failure.text + (failure.text.ends_with('\n') ? "" : "\n")).c_str(), stderr);
}

std::array<int, 2> newPipe()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "playing steps");
    return ends;
}

void closeOnce(int &descriptor)
{
    if (descriptor != -1)
        ::close(std::exchange(descriptor, -1));
}

bool isNamed(const Step &step, const char *name)
{
    return step.command.reading().row().name == std::string(name);
}

// What is wrong with it at this moment; nothing when it holds.
std::optional<std::string> whatIsWrong(const Step &step, Session &session)
{
    const auto [board, condition] = conditionOf(step, session);
    const auto lock = board->lock();
    Watch watch(condition, *board, pointNow(*board));
    if (watch.look(*board))
        return std::nullopt;
    return "\"" + watch.text() + "\" does not hold\n" + watch.situation(*board, cabinet::eventNames(session.cabinet));
}

}  // namespace

StepPlayer::StepPlayer(const Steps &steps, Session &session, Nanoseconds grace,
                       std::function<void(int signal)> signalProgram)
    : steps_(steps), session_(session), grace_(grace), signalProgram_(std::move(signalProgram)),
      bell_(session.boards.bell()), thisStep_(pointsNow()), end_(newPipe()), done_(newPipe())
{
}

StepPlayer::~StepPlayer()
{
    closeOnce(end_[1]);
    if (thread_.joinable())
        thread_.join();
    for (int *descriptor : {&end_[0], &done_[0], &done_[1]})
        closeOnce(*descriptor);
}

void StepPlayer::start()
{
    thread_ = std::thread([this] {
        play();
        judgeEnd();
        closeOnce(done_[1]);
    });
}

Verdict StepPlayer::end(std::chrono::milliseconds most)
{
    closeOnce(end_[1]);
    pollfd done{done_[0], 0, 0};
    return ::poll(&done, 1, static_cast<int>(most.count())) > 0 ? verdict_.load() : Verdict::Failed;
}

void StepPlayer::play()
{
    try {
        for (const Step &step : steps_.inOrder) {
            previousStep_ = std::exchange(thisStep_, pointsNow());
            carryOut(step);
        }
        sleepUntilEnd();
        lookAtForbidden();
    } catch (const Failure &failure) {
        tell(failure);
        verdict_ = Verdict::Failed;
        stop(SIGTERM);
    }
}

void StepPlayer::judgeEnd()
{
    for (const Step &step : steps_.atEnd) {
        if (const std::optional<std::string> wrong = whatIsWrong(step, session_)) {
            tell({step.where, "at the end " + *wrong});
            verdict_ = Verdict::Failed;
        }
    }
}

StepPlayer::Points StepPlayer::pointsNow() const
{
    Points points;
    for (const int device : allBoards(session_.boards)) {
        const std::shared_ptr<VirtualBoard> board = session_.boards.hold(device);
        const auto lock = board->lock();
        points[device] = pointNow(*board);
    }
    return points;
}

void StepPlayer::carryOut(const Step &step)
{
    if (isNamed(step, "wait"))
        waitFor(step);
    else if (isNamed(step, "expect"))
        expect(step);
    else if (isNamed(step, "never"))
        forbid(step);
    else if (ended_)
        throw Failure{step.where, beforeItWasReached};
    else if (isNamed(step, "pause"))
        pause(step.command.reading()["TIME"].time);
    else if (isNamed(step, "stop"))
        stop(signalOf(step));
    else
        act(step);
    if (ended_ && isNamed(step, "pause"))
        throw Failure{step.where, beforeItWasReached};
}

void StepPlayer::act(const Step &step)
{
    try {
        const Outcome outcome = step.command.carryOut(session_);
        std::fputs((outcome.data.empty() ? outcome.text : outcome.data + "\n").c_str(), stderr);
    } catch (const std::exception &error) {
        throw Failure{step.where, error.what()};
    }
}

// How the boards were since the step before began: what came while this thread was not looking counts, also when the
// program has ended meanwhile.
void StepPlayer::waitFor(const Step &step)
{
    const auto [board, condition] = conditionOf(step, session_);
    const Reading &reading = step.command.reading();
    const Nanoseconds deadline = now() + (reading.has("within") ? reading["within"].time : usualWait);
    std::optional<Watch> watch;
    for (;;) {
        Nanoseconds next{};
        const bool last = ended_ || now() >= deadline;
        {
            bell_.heard();
            const auto lock = board->lock();
            if (!watch)
                watch.emplace(condition, *board, previousStep_.at(board->deviceNo()));
            if (watch->look(*board, deadline))
                return;
            if (last)
                throw Failure{step.where, "\"" + watch->text() + "\" did not hold " +
                                              (ended_ ? "before the program ended" : "in time") + "\n" +
                                              watch->situation(*board, cabinet::eventNames(session_.cabinet))};
            next = std::min(watch->nextMoment(*board).value_or(deadline), deadline);
        }
        sleepUntil(next, true);
    }
}

void StepPlayer::expect(const Step &step)
{
    if (const std::optional<std::string> wrong = whatIsWrong(step, session_))
        throw Failure{step.where, *wrong};
}

void StepPlayer::forbid(const Step &step)
{
    const auto [board, condition] = conditionOf(step, session_);
    const auto lock = board->lock();
    forbidden_.push_back({board, Watch(condition, *board, pointNow(*board)), step.where});
}

void StepPlayer::lookAtForbidden()
{
    for (Forbidden &each : forbidden_) {
        const auto lock = each.board->lock();
        if (each.watch.look(*each.board))
            throw Failure{each.where, "\"" + each.watch.text() + "\" has held\n" +
                                          each.watch.situation(*each.board, cabinet::eventNames(session_.cabinet))};
    }
}

void StepPlayer::pause(Nanoseconds time)
{
    for (const Nanoseconds end = now() + time; !ended_ && now() < end;) {
        bell_.heard();
        sleepUntil(end, !forbidden_.empty());
    }
}

// It is not over before the program is.
void StepPlayer::stop(int signal)
{
    if (!ended_) {
        if (verdict_ == Verdict::Passed)
            verdict_ = Verdict::Stopped;
        signalProgram_(signal);
    }
    const Nanoseconds deadline = now() + grace_;
    pollfd end{end_[0], 0, 0};
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now());
    if (!ended_ && ::poll(&end, 1, static_cast<int>(left.count()) + 1) == 0)
        signalProgram_(SIGKILL);
    while (!ended_)
        ended_ = ::poll(&end, 1, -1) > 0;
}

void StepPlayer::sleepUntilEnd()
{
    while (!ended_) {
        bell_.heard();
        sleepUntil(Nanoseconds::max(), !forbidden_.empty());
    }
}

// Wakes up also for what must never be, and for the end of the program. What has rung since the caller last looked
// still wakes it.
void StepPlayer::sleepUntil(Nanoseconds moment, bool watching)
{
    lookAtForbidden();
    for (const Forbidden &each : forbidden_) {
        const auto lock = each.board->lock();
        moment = std::min(moment, each.watch.nextMoment(*each.board).value_or(moment));
    }
    const Nanoseconds left = std::clamp(moment - now(), Nanoseconds::zero(), Nanoseconds(std::chrono::hours(1)));
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec time{static_cast<time_t>(seconds.count()), static_cast<long>((left - seconds).count())};
    std::array<pollfd, 2> waited{{{watching ? bell_.descriptor() : -1, POLLIN, 0}, {end_[0], 0, 0}}};
    ::ppoll(waited.data(), waited.size(), &time, nullptr);
    ended_ = ended_ || waited[1].revents != 0;
}

}  // namespace sim
