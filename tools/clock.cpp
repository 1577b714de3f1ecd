// The board's clock. What it counts is the firmware's: a number is read and written as it is.
#include "tools/failure.h"
#include "tools/gate.h"
#include "tools/print.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <ctime>

namespace tools
{

namespace
{

struct ClockOptions {
    std::string board, action, value;
    Consent consent;
};

std::uint32_t valueFrom(const std::string &word)
{
    if (word == "now")
        return static_cast<std::uint32_t>(std::time(nullptr));
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (word.empty() || error != std::errc() || end != word.data() + word.size())
        throw UsageError("clock set \"" + word + "\": allowed: 0 to 4294967295, or now");
    return value;
}

int clock(const ClockOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    if (!options.action.empty()) {
        const std::uint32_t value = valueFrom(options.value);
        board.needFirmware();
        options.consent.obtain(board, "set the clock to " + std::to_string(value));
        board.ask("SetClock", {{"time", value}});
    }
    board.needFirmware();
    const std::uint32_t time = board.ask("GetClock").number("time");
    if (settings.json)
        print({{"board", board.device()}, {"clock", time}});
    else
        say("clock of %s: %u (what it counts is the firmware's)\n", board.title().c_str(), time);
    return 0;
}

}  // namespace

Command::Action declareClock(CLI::App &command)
{
    auto options = std::make_shared<ClockOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    CLI::Option *action = command.add_option("ACTION", options->action, "set")->check(CLI::IsMember({"set"}));
    command
        .add_option("VALUE", options->value,
                    "a number as it is, or now: the machine's time in seconds since the beginning of 1970")
        ->needs(action);
    options->consent.addTo(command);
    return [options](const Settings &settings) { return clock(*options, settings); };
}

}  // namespace tools
