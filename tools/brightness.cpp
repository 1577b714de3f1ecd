// The common brightness of a board's outputs.
#include "tools/gate.h"
#include "tools/print.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

struct BrightnessOptions {
    std::string board;
    unsigned int level = 0;
    Consent consent;
};

int brightness(const BrightnessOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    board.needFirmware();
    options.consent.obtain(board, "set the brightness to " + std::to_string(options.level));
    board.ask("SetOutputBrightness", {{"level", options.level}});
    if (settings.json)
        print({{"board", board.device()}, {"brightness", options.level}});
    else
        say("brightness of %s: %u\n", board.title().c_str(), options.level);
    return 0;
}

}  // namespace

Command::Action declareBrightness(CLI::App &command)
{
    auto options = std::make_shared<BrightnessOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("LEVEL", options->level, "0 to 10")->required()->check(CLI::Range(0, 10));
    options->consent.addTo(command);
    return [options](const Settings &settings) { return brightness(*options, settings); };
}

}  // namespace tools
