// sorvane: looks at the boards of a machine and tries what hangs on them.
#include "tools/command.h"
#include "tools/failure.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

using namespace tools;

namespace
{

using Json = nlohmann::ordered_json;

constexpr const char *version = "sorvane " SORVANE_VERSION;

cabinet::Cabinet cabinetFrom(const std::string &file)
{
    try {
        return cabinet::Cabinet::read(file);
    } catch (const cabinet::Error &mistakes) {
        throw UsageError(std::string("--cabinet: ") + mistakes.what());
    }
}

// The words of a program stand behind the first "--"; they are nobody's options.
int run(int argc, char **argv)
{
    char **const programMark = std::find(argv, argv + argc, std::string("--"));
    Settings settings;
    std::string cabinetFile;
    CLI::App app("Looks at Sorvane boards, tries what hangs on them and traces programs that use them", "sorvane");
    app.set_version_flag("--version", version);
    app.require_subcommand(1);
    app.add_flag("--json", settings.json, "data instead of text: one object, or a line each for what goes on");
    app.add_option("--cabinet", cabinetFile, "a file with the names of boards and parts (docs/cabinet.md)")
        ->type_name("FILE");
    app.footer(
        "A BOARD is 0 to 15, /dev/Vexa_N, or with --cabinet a name. What pays, moves, writes, resets or takes asks\n"
        "first, or needs --yes where there is no terminal. sorvane COMMAND --help tells the rest, as does\n"
        "docs/technician.md with a session of each. To begin with: sorvane list");
    const Command *chosen = nullptr;
    Command::Action action;
    for (const Command &command : commands()) {
        CLI::App *subcommand = app.add_subcommand(command.name, command.help);
        subcommand->fallthrough();
        subcommand->parse_complete_callback([&chosen, &command] { chosen = &command; });
    }
    std::vector<Command::Action> actions;
    for (const Command &command : commands())
        actions.push_back(command.declare(*app.get_subcommand(command.name)));
    try {
        app.parse(static_cast<int>(programMark - argv), argv);
    } catch (const CLI::Success &asked) {
        return app.exit(asked);
    } catch (const CLI::ParseError &error) {
        const auto parsed = app.get_subcommands();
        throw UsageError(std::string(error.what()) + "\n" + (parsed.empty() ? app : *parsed[0]).help());
    }
    if (programMark != argv + argc && !chosen->takesProgram)
        throw UsageError(std::string(chosen->name) + " takes no program behind --");
    settings.program.assign(programMark == argv + argc ? programMark : programMark + 1, argv + argc);
    if (!cabinetFile.empty())
        settings.cabinet = cabinetFrom(cabinetFile);
    return actions[static_cast<std::size_t>(chosen - commands().data())](settings);
}

int tell(bool asJson, int status, const char *what, const std::string &advice, std::optional<int> code)
{
    if (asJson) {
        Json error = {{"status", status}, {"text", what}};
        if (code)
            error["code"] = *code;
        if (!advice.empty())
            error["try"] = advice;
        // What was typed may be no UTF-8.
        std::puts(Json{{"sorvane", 1}, {"error", error}}.dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
        return status;
    }
    std::fflush(stdout);
    std::fprintf(stderr, "sorvane: %s\n", what);
    if (!advice.empty())
        std::fprintf(stderr, "%s\n", advice.c_str());
    return status;
}

}  // namespace

int main(int argc, char **argv)
{
    const bool asJson =
        std::find(argv, argv + argc, std::string("--json")) < std::find(argv, argv + argc, std::string("--"));
    try {
        const int status = run(argc, argv);
        if (std::fflush(stdout) != 0 || std::ferror(stdout))
            return tell(false, statusOfFailure, "what there is to tell could not be written", "", std::nullopt);
        return status;
    } catch (const UsageError &error) {
        return tell(asJson, statusOfUsageError, error.what(), "", std::nullopt);
    } catch (const cabinet::Error &error) {
        return tell(asJson, statusOfUsageError, error.what(), "", std::nullopt);
    } catch (const Refusal &refusal) {
        return tell(asJson, statusOfFailure, refusal.what(), refusal.advice(), refusal.code());
    } catch (const std::exception &error) {
        return tell(asJson, statusOfFailure, error.what(), "", std::nullopt);
    }
}
