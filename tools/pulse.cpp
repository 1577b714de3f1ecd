// A pulse on one output, which the board times by itself.
#include "tools/gate.h"
#include "tools/print.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

constexpr unsigned int lastPulsedOutput = 31;

struct PulseOptions {
    std::string board, part;
    unsigned int value = 0;
    bool off = false;
    Consent consent;
};

int pulse(const PulseOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    const cabinet::Place place = board.part({cabinet::Kind::Output}, options.part, lastPulsedOutput);
    const std::string what = "output " + named(place.number, board.nameOf(cabinet::Kind::Output, place.number));
    const char *state = options.off ? "off" : "on";
    board.needFirmware();
    options.consent.obtain(board, "pulse " + what + " " + state);
    board.ask(options.off ? "PulseOffOutput" : "PulseOutput",
              {{"pulseValue", options.value}, {"output", place.number}});
    if (settings.json)
        print({{"board", board.device()}, {"output", place.number}, {"pulse_value", options.value}, {"pulse", state}});
    else
        say("%s of %s: asked for a pulse %s of %u (the unit is the firmware's)\n", what.c_str(), board.title().c_str(),
            state, options.value);
    return 0;
}

}  // namespace

Command::Action declarePulse(CLI::App &command)
{
    auto options = std::make_shared<PulseOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("PART", options->part, "the output, 0 to 31 or by name")->required();
    command.add_option("VALUE", options->value, "0 to 255; its unit is the firmware's")
        ->required()
        ->check(CLI::Range(0, 255));
    command.add_flag("--off", options->off, "a pulse that switches the output off instead of on");
    options->consent.addTo(command);
    return [options](const Settings &settings) { return pulse(*options, settings); };
}

}  // namespace tools
