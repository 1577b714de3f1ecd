#include "sim/language/steps.h"

#include "sim/language/watch.h"

#include <algorithm>
#include <csignal>

namespace sim
{

namespace
{

struct SignalName {
    const char *name;
    int number;
};
constexpr SignalName signalNames[] = {{"TERM", SIGTERM}, {"INT", SIGINT},   {"HUP", SIGHUP},   {"QUIT", SIGQUIT},
                                      {"USR1", SIGUSR1}, {"USR2", SIGUSR2}, {"ABRT", SIGABRT}, {"KILL", SIGKILL}};

// What cannot be done as a command of its own.
Outcome onlyAsStep(Call &)
{
    return {};
}

}  // namespace

const std::vector<CommandRow> &stepRows()
{
    static const std::vector<CommandRow> rows = [] {
        std::vector<CommandRow> all = commandRows();
        const Argument time{.name = "TIME", .sort = Sort::Time, .what = "a time"};
        const Argument condition{.name = "CONDITION", .sort = Sort::Condition, .what = "a condition"};
        Argument signal{.name = "SIGNAL", .sort = Sort::Choice, .what = "signal", .optional = true};
        for (const SignalName &each : signalNames)
            signal.choices.push_back(each.name);
        all.push_back({{.name = "pause", .arguments = {time}, .help = "lets so much time pass"}, onlyAsStep});
        all.push_back({{.name = "never",
                        .arguments = {condition},
                        .help = "the condition must not hold at any moment from here to the end of the program"},
                       onlyAsStep});
        all.push_back({{.name = "stop",
                        .arguments = {signal},
                        .help = "ends the program by a signal (TERM), by KILL where it does not end; it has done well"},
                       onlyAsStep});
        return all;
    }();
    return rows;
}

int signalOf(const Step &step)
{
    const Reading &reading = step.command.reading();
    const std::string name = reading.has("SIGNAL") ? reading["SIGNAL"].word : "TERM";
    return std::find_if(std::begin(signalNames), std::end(signalNames),
                        [&name](const SignalName &signal) { return name == signal.name; })
        ->number;
}

StepCondition conditionOf(const Step &step, Session &session)
{
    Reading reading;
    const std::vector<int> devices = step.command.resolve(session, reading);
    const Call call{session, reading, devices};
    return {session.boards.hold(onlyDevice(call)), *reading["CONDITION"].condition};
}

void tryStep(const Step &step, Session &session)
{
    if (!step.command.reading().has("CONDITION")) {
        (void)step.command.carryOut(session);
        return;
    }
    const auto [board, condition] = conditionOf(step, session);
    const auto lock = board->lock();
    const Watch watch(condition, *board, pointNow(*board));
}

}  // namespace sim
