#include "sim/command/run_options.h"

#include "sim/command/cabinet_command.h"
#include "sim/control/run_names.h"
#include "sim/language/cabinet_boards.h"
#include "sim/language/kept_memories.h"

#include <CLI/CLI.hpp>

namespace sim
{

namespace
{

const std::map<std::string, How> ways{{"node", How::Node}, {"preload", How::Preload}, {"auto", How::Auto}};

TextWords boardsOf(const Replay &replay)
{
    TextWords words;
    for (const auto &[device, board] : replay.boards())
        words.push_back(std::to_string(device) + '=' + nameOf(static_cast<Model>(board.model)) +
                        (board.highSpeed ? ",speed=high" : ""));
    return words;
}

// On boards like them, before a program starts.
void tryOut(const RunRequest &request)
{
    request.scenario.check(request.boards, request.cabinet);
    ManualClock clock;
    VirtualBoards boards(clock);
    plugBoards(boards, request.boards);
    loadMemories(boards, request.boards);
}

}  // namespace

BoardsOptions::BoardsOptions(CLI::App &command)
{
    command.add_option("--board", boards_, boardOptionsHelp())->expected(1)->take_all();
    command.add_option("--cabinet", cabinet_, "a file that says what the machine is (docs/cabinet.md)");
    command.add_option("--scenario", scenario_, "a file of commands; `at 1.5s` before one says when");
    command.add_option("--name", name_, "what the run is called in ctl, enter, list and stop");
    const auto privateIpc =
        command.add_flag("--private-ipc", privateIpc_, "SysV objects of the program's own (the default)");
    const auto shareIpc = command.add_flag("--share-ipc", shareIpc_, "the machine's SysV objects");
    privateIpc->disable_flag_override();
    shareIpc->disable_flag_override()->excludes(privateIpc);
}

RunRequest BoardsOptions::request(const TextWords &boards, const TextWords &steps) const
{
    RunRequest request;
    if (name_)
        checkRunName(*name_);
    request.name = name_.value_or("");
    request.cabinetFile = cabinet_.value_or("");
    if (cabinet_)
        request.cabinet = cabinetFrom(*cabinet_);
    request.boardArguments = boardArguments(request.cabinet);
    request.boardArguments.insert(request.boardArguments.end(), boards.begin(), boards.end());
    request.boards = boardsFrom(request.boardArguments);
    if (request.boards.empty())
        throw UsageError("there is no board; allowed: --board N=MODEL[,option=value...], as in --board 0=R35, and "
                         "--cabinet FILE");
    if (scenario_ && !steps.empty())
        throw UsageError("--steps and --scenario exclude each other; allowed is a line `steps` in the scenario");
    request.scenario = scenario_ ? Scenario::read(*scenario_) : Scenario::fromSteps(steps);
    request.steps = steps;
    request.privateIpc = !shareIpc_;
    request.scenarioFile = scenario_.value_or("");
    tryOut(request);
    return request;
}

RunOptions::RunOptions(CLI::App &command) : boards_(command)
{
    const auto isWay = [](const std::string &word) {
        return ways.count(word) > 0 ? "" : "\"" + word + "\" is no way; allowed: node, preload, auto";
    };
    command.add_option("--steps", steps_, "a step, as in a scenario below the line `steps`; may be given again")
        ->expected(1)
        ->take_all();
    command.add_option("--grace", grace_, "how long a program that is to end may take before it is killed (2s)");
    command.add_flag("--summary", summary_, "tell at the end what each board was asked and how it was left")
        ->disable_flag_override();
    command.add_option("--record", record_, "keep the journal of the boards in this file, as JSON Lines");
    CLI::Option *replay =
        command.add_option("--replay", replay_, "a recording that answers for the boards in it, until one departs");
    for (const char *boards : {"--board", "--cabinet", "--scenario"})
        replay->excludes(command.get_option(boards));
    command.add_option("--how", how_, "node, preload, or auto: nodes where they are possible")->check(isWay);
}

RunRequest RunOptions::request(const TextWords &program) const
{
    const std::shared_ptr<Replay> replay = replay_ ? std::make_shared<Replay>(*replay_) : nullptr;
    RunRequest request = replay ? boards_.request(boardsOf(*replay), steps_) : boards_.request(steps_);
    request.replay = replay;
    request.program = program;
    request.grace = durationFrom(grace_);
    request.how = ways.at(how_);
    if (replay && request.how == How::Preload)
        throw UsageError("--replay needs device nodes; allowed: --how node, --how auto");
    request.keeping = {summary_,
                       record_.value_or(""),
                       {journal::formatVersion, "sorvane-sim " SORVANE_VERSION, program, journal::timeNow(), {}}};
    // Behind all checks: nobody loses an old record by a wrong call.
    if (record_)
        prepareRecord(*record_);
    return request;
}

ServeOptions::ServeOptions(CLI::App &command) : boards_(command)
{
    command.add_flag("--background", background_, "print the run's name alone once programs may enter, and stay")
        ->disable_flag_override();
    command.add_flag("--end-with-input", endsWithInput_, "end also when the standard input ends")
        ->disable_flag_override();
}

RunRequest ServeOptions::request() const
{
    RunRequest request = boards_.request();
    if (!request.scenario.steps().empty())
        throw UsageError("steps are for one program; allowed is a scenario with them for run");
    request.inBackground = background_;
    request.endsWithInput = endsWithInput_;
    return request;
}

}  // namespace sim
