// sorvane-sim: virtual boards behind real device nodes.
#include "sim/command/cabinet_command.h"
#include "sim/command/ctl_command.h"
#include "sim/command/run_command.h"
#include "sim/language/cabinet_boards.h"
#include "sim/system/failure.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

using namespace sim;

namespace
{

struct Options {
    TextWords boards;
    std::optional<std::string> cabinet;
    std::optional<std::string> scenario;
    bool summary = false;
    std::optional<std::string> record;
    std::optional<std::string> runId;
    std::optional<std::string> board;
    std::string how = "auto";
    bool privateIpc = false;
    bool shareIpc = false;
};

void addBoards(CLI::App &command, Options &options)
{
    command.add_option("--board", options.boards, boardOptionsHelp())->expected(1)->take_all();
    command.add_option("--cabinet", options.cabinet, "a file that says what the machine is (docs/cabinet.md)");
    command.add_option("--scenario", options.scenario, "a file of commands; `at 1.5s` before one says when");
    const auto privateIpc =
        command.add_flag("--private-ipc", options.privateIpc, "SysV objects of the program's own (the default)");
    const auto shareIpc = command.add_flag("--share-ipc", options.shareIpc, "the machine's SysV objects");
    privateIpc->disable_flag_override();
    shareIpc->disable_flag_override()->excludes(privateIpc);
}

RunRequest requestFrom(const Options &options)
{
    RunRequest request;
    request.cabinetFile = options.cabinet.value_or("");
    if (options.cabinet)
        request.cabinet = cabinetFrom(*options.cabinet);
    request.boardArguments = boardArguments(request.cabinet);
    request.boardArguments.insert(request.boardArguments.end(), options.boards.begin(), options.boards.end());
    request.boards = boardsFrom(request.boardArguments);
    if (request.boards.empty())
        throw UsageError("there is no board; allowed: --board N=MODEL[,option=value...], as in --board 0=R35, and "
                         "--cabinet FILE");
    if (options.scenario)
        request.scenario = Scenario::read(*options.scenario);
    request.scenario.check(request.boards, request.cabinet);
    request.privateIpc = !options.shareIpc;
    request.how = howFrom(options.how);
    request.scenarioFile = options.scenario.value_or("");
    return request;
}

// Nothing but a wrong call leaves an old record in its place.
RunRequest runRequestFrom(const Options &options, const TextWords &program)
{
    RunRequest request = requestFrom(options);
    request.keeping = {options.summary,
                       options.record.value_or(""),
                       {journal::formatVersion, "sorvane-sim " SORVANE_VERSION, program, journal::timeNow()}};
    if (options.record)
        prepareRecord(*options.record);
    return request;
}

TextWords checked(const TextWords &program)
{
    if (program.empty())
        throw UsageError("there is no program; it stands behind --, as in: -- PROGRAM [ARG...]");
    return program;
}

int controlBy(const Options &options, TextWords words)
{
    for (const std::string &word : words) {
        if (word == "--help" || word == "-h")
            throw CLI::CallForHelp();
        if (word == "--version")
            throw CLI::CallForVersion("sorvane-sim " SORVANE_VERSION, 0);
    }
    if (options.board)
        words.insert(words.begin(), {"--board", *options.board});
    return control(options.runId, words);
}

// The program's words stand behind the first "--"; they are nobody's options.
int run(int argc, char **argv)
{
    char **const programMark = std::find(argv, argv + argc, std::string("--"));
    const bool marked = programMark != argv + argc;
    const TextWords program(marked ? programMark + 1 : argv + argc, argv + argc);

    Options options;
    CLI::App app("Virtual Sorvane boards behind real device nodes", "sorvane-sim");
    const auto add = [&app](const char *name, const char *help) {
        CLI::App *command = app.add_subcommand(name, help);
        command->set_version_flag("--version", "sorvane-sim " SORVANE_VERSION);
        return command;
    };
    app.set_version_flag("--version", "sorvane-sim " SORVANE_VERSION);
    app.require_subcommand(1);
    CLI::App *run = add("run", "run [OPTION...] -- PROGRAM [ARG...]: the boards for one program");
    addBoards(*run, options);
    run->add_flag("--summary", options.summary, "tell at the end what each board was asked and how it was left");
    run->add_option("--record", options.record, "keep the journal of the boards in this file, as JSON Lines");
    run->add_option("--how", options.how, "node, preload, or auto: nodes where they are possible");
    CLI::App *serve = add("serve", "keep boards up for programs that enter");
    addBoards(*serve, options);
    CLI::App *enter = add("enter", "enter [--run ID] -- PROGRAM [ARG...]: a program for boards that are up");
    CLI::App *ctl = add("ctl", "ctl [--run ID] [--board N] COMMAND: do something to the boards");
    enter->add_option("--run", options.runId, "which boards, where several runs are up");
    ctl->add_option("--run", options.runId, "which boards, where several runs are up");
    ctl->add_option("--board", options.board, "which board, where there are several");
    ctl->prefix_command()->footer(commandsHelp());
    CLI::App *cabinet = add("cabinet", "check a cabinet file, or begin one");
    const CabinetCommand cabinetCommand(*cabinet);
    try {
        app.parse(static_cast<int>(programMark - argv), argv);
        if (marked && !run->parsed() && !enter->parsed())
            throw UsageError("a program behind -- is allowed with run and enter only");
        if (run->parsed())
            runWithBoards(runRequestFrom(options, checked(program)), program);
        if (enter->parsed())
            enterRun(options.runId, checked(program));
        if (serve->parsed())
            return serveBoards(requestFrom(options));
        if (cabinet->parsed())
            return cabinetCommand.carryOut();
        return controlBy(options, ctl->remaining());
    } catch (const CLI::Success &asked) {
        return app.exit(asked);
    } catch (const CLI::ParseError &error) {
        throw UsageError(std::string(error.what()) + "\n" + app.help());
    }
}

// What is opened later must not take their place. The program gets them as they were: closed.
void fillClosedStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) == -1)
            (void)::open("/dev/null", O_RDWR | O_CLOEXEC);
    }
}

}  // namespace

int main(int argc, char **argv)
{
    fillClosedStandardDescriptors();
    try {
        return run(argc, argv);
    } catch (const UsageError &error) {
        std::fprintf(stderr, "sorvane-sim: %s\n", error.what());
        return statusOfUsageError;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "sorvane-sim: %s\n", error.what());
        return statusOfFailure;
    }
}
