// The security switches: their latched flags, their log, and clearing them. The board forgets what it has told.
#include "tools/gate.h"
#include "tools/stop_signals.h"
#include "tools/taking.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

struct SecurityOptions {
    std::string board, action = "all";
    Consent consent;
};

constexpr unsigned int mostEntries = 65536;  // of a log whose end never shows

std::string namesOf(const Board &board, const std::vector<std::uint32_t> &switches)
{
    std::string list;
    for (const std::uint32_t number : switches)
        list += (list.empty() ? "" : ", ") + named(number, board.nameOf(cabinet::Kind::Switch, number));
    return list.empty() ? "none" : list;
}

void tellFlags(Board &board, Json &report)
{
    for (const char *operation : {"ReadAndResetSecuritySwitchFlags", "CachedReadAndResetSecuritySwitchFlags"}) {
        const Answer answer = board.ask(operation);
        const char *key = operation[0] == 'C' ? "cached_flags" : "flags";
        report[key] = {{"a", answer.numbers("flagsA")}, {"b", answer.numbers("flagsB")}};
    }
}

/// The log until a status says that it ends; whether that is the end is the firmware's.
void tellLog(Board &board, Json &report)
{
    StopSignals signals;
    board.ask("StartSecuritySwitchRead");
    report["log"] = Json::array();
    while (report["log"].size() < mostEntries) {
        if (signals.arrived())
            throw Refusal("reading the switch log of " + board.title() + " was stopped");
        const protocol::Decoded next = board.tryToAsk("NextSecuritySwitchRead");
        if (next.outcome == protocol::Outcome::Failed)
            refuse("reading the switch log of " + board.title(), next.status);
        if (next.outcome == protocol::Outcome::Refused) {
            report["log_ended_with_status"] = next.status;
            return;
        }
        const Answer entry(next);
        report["log"].push_back({{"time", entry.number("time")}, {"switches", entry.numbers("switches")}});
    }
}

void sayLog(const Board &board, const Json &report)
{
    using Numbers = std::vector<std::uint32_t>;
    for (const char *key : {"flags", "cached_flags"}) {
        if (report.contains(key))
            say("%s: a: switches %s; b: switches %s\n", key[0] == 'c' ? "cached flags" : "flags",
                namesOf(board, report[key]["a"].get<Numbers>()).c_str(),
                namesOf(board, report[key]["b"].get<Numbers>()).c_str());
    }
    if (report.contains("log")) {
        for (const Json &entry : report["log"])
            say("at %u: switches %s\n", entry["time"].get<std::uint32_t>(),
                namesOf(board, entry["switches"].get<Numbers>()).c_str());
        const std::string end = report.contains("log_ended_with_status")
                                    ? ", then status " + report["log_ended_with_status"].dump()
                                    : "; more may follow";
        say("log: %zu entries%s\n", report["log"].size(), end.c_str());
    }
    if (report.contains("cleared"))
        say("security switches of %s: cleared\n", board.title().c_str());
}

int security(const SecurityOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    board.needFirmware();
    options.consent.obtain(board, options.action == "clear"
                                      ? "clear the security switches"
                                      : "read and so reset the security switches' " +
                                            (options.action == "all" ? "flags and log" : options.action));
    const auto take = [&](Json &report) {
        if (options.action == "flags" || options.action == "all")
            tellFlags(board, report);
        if (options.action == "log" || options.action == "all")
            tellLog(board, report);
        if (options.action == "clear") {
            board.ask("ClearSecuritySwitches");
            report["cleared"] = true;
        }
    };
    return takeAndTell(board, settings, take, [&](const Json &report) { sayLog(board, report); });
}

}  // namespace

Command::Action declareSecurity(CLI::App &command)
{
    auto options = std::make_shared<SecurityOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("ACTION", options->action, "flags, log, all (both) or clear")
        ->capture_default_str()
        ->check(CLI::IsMember({"flags", "log", "all", "clear"}));
    options->consent.addTo(command);
    return [options](const Settings &settings) { return security(*options, settings); };
}

}  // namespace tools
