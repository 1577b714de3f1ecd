// sorvane-sim: virtual boards behind real device nodes.
#include "sim/command/cabinet_command.h"
#include "sim/command/ctl_command.h"
#include "sim/command/list_command.h"
#include "sim/command/run_command.h"
#include "sim/command/run_options.h"
#include "sim/language/commands.h"
#include "sim/system/failure.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

using namespace sim;

namespace
{

constexpr char version[] = "sorvane-sim " SORVANE_VERSION;

TextWords checked(const TextWords &program)
{
    if (program.empty())
        throw UsageError("there is no program; it stands behind --, as in: -- PROGRAM [ARG...]");
    return program;
}

// Everything behind the first word of a command belongs to it, also what is an option elsewhere.
TextWords wordsFor(const CLI::App &ctl, const std::optional<std::string> &board)
{
    TextWords words = ctl.remaining();
    for (const std::string &word : words) {
        if (word == "--help" || word == "-h")
            throw CLI::CallForHelp();
        if (word == "--version")
            throw CLI::CallForVersion(version, 0);
    }
    if (board)
        words.insert(words.begin(), {"--board", *board});
    return words;
}

// The program's words stand behind the first "--"; they are nobody's options. CLI11 would take [a,b] among them apart.
int run(int argc, char **argv)
{
    char **const programMark = std::find(argv, argv + argc, std::string("--"));
    const bool marked = programMark != argv + argc;
    const TextWords program(marked ? programMark + 1 : argv + argc, argv + argc);

    std::optional<std::string> which;
    std::optional<std::string> board;
    std::string stopped;
    bool json = false;
    bool endsWithRun = false;
    CLI::App app("Virtual Sorvane boards behind real device nodes", "sorvane-sim");
    app.set_version_flag("--version", version);
    app.require_subcommand(1);
    const auto add = [&app](const char *name, const char *help) {
        CLI::App *command = app.add_subcommand(name, help);
        command->set_version_flag("--version", version);
        return command;
    };
    const auto addWhich = [&which](CLI::App *command) {
        command->add_option("--run", which, "which boards, by the run's name or id, where several runs are up");
    };
    CLI::App *run = add("run", "run [OPTION...] -- PROGRAM [ARG...]: the boards for one program");
    const RunOptions runOptions(*run);
    CLI::App *serve = add("serve", "keep boards up for programs that enter");
    const ServeOptions serveOptions(*serve);
    CLI::App *enter = add("enter", "enter [--run NAME|ID] -- PROGRAM [ARG...]: a program for boards that are up");
    addWhich(enter);
    enter->add_flag("--end-with-run", endsWithRun, "kill the program and all that it started when the run ends")
        ->disable_flag_override();
    CLI::App *ctl = add("ctl", "ctl [--run NAME|ID] [--board N|NAME] COMMAND: do something to the boards");
    addWhich(ctl);
    ctl->add_option("--board", board, "which board, where there are several");
    ctl->prefix_command()->footer(commandsHelp());
    CLI::App *list = add("list", "the runs that are up");
    list->add_flag("--json", json, "as JSON")->disable_flag_override();
    CLI::App *stop = add("stop", "stop NAME|ID: end a run, and wait until it has ended");
    stop->add_option("NAME", stopped, "the run's name or id")->required();
    CLI::App *commands = add("commands", "what ctl and scenarios understand");
    commands->add_flag("--json", json, "as JSON, with every argument")->disable_flag_override();
    CLI::App *cabinet = add("cabinet", "check a cabinet file, or begin one");
    const CabinetCommand cabinetCommand(*cabinet);
    try {
        app.parse(static_cast<int>(programMark - argv), argv);
        if (marked && !run->parsed() && !enter->parsed())
            throw UsageError("a program behind -- is allowed with run and enter only");
        if (run->parsed())
            runWithBoards(runOptions.request(checked(program)));
        if (enter->parsed())
            enterRun(which, checked(program), endsWithRun);
        if (serve->parsed())
            return serveBoards(serveOptions.request());
        if (list->parsed())
            return listRuns(json);
        if (stop->parsed())
            return stopRun(stopped);
        if (commands->parsed())
            return std::puts((json ? jsonOf({{"commands", commandSyntax()}, {"conditions", conditionSyntax()}})
                                   : commandsHelp())
                                 .c_str()) < 0;
        if (cabinet->parsed())
            return cabinetCommand.carryOut();
        return control(which, wordsFor(*ctl, board));
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
