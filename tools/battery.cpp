// What the board tells of its battery and its clock's failures. The board resets the flags when they are read.
#include "tools/gate.h"
#include "tools/taking.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

struct BatteryOptions {
    std::string board;
    Consent consent;
};

void sayState(const Json &report)
{
    for (const auto &[key, value] : report.items()) {
        std::string label = key;
        std::replace(label.begin(), label.end(), '_', ' ');
        if (key != "board")
            say("%s: %u\n", label.c_str(), value.get<std::uint32_t>());
    }
}

int battery(const BatteryOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    board.needFirmware();
    options.consent.obtain(board, "read and so reset the battery and clock flags");
    const auto take = [&board](Json &report) {
        report["battery_fail_flag"] = board.ask("ReadAndResetBatteryFailFlag").number("flag");
        if (board.has("ReadAndResetRTCFailure")) {
            report["clock_failure_flag"] = board.ask("ReadAndResetRTCFailure").number("flag");
            report["clock_at_battery_failure"] = board.ask("ReadClockAtBatteryFailure").number("time");
        }
    };
    return takeAndTell(board, settings, take, sayState);
}

}  // namespace

Command::Action declareBattery(CLI::App &command)
{
    auto options = std::make_shared<BatteryOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    options->consent.addTo(command);
    return [options](const Settings &settings) { return battery(*options, settings); };
}

}  // namespace tools
