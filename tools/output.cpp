// One output, through the library: what all processes share of the flash patterns stays in step.
#include "tools/failure.h"
#include "tools/gate.h"
#include "tools/opening.h"
#include "tools/print.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

constexpr unsigned int lastOutput = 37;

struct OutputOptions {
    std::string board, part, state;
    Consent consent;
    Opening opening;
};

int output(OutputOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    const cabinet::Place place = board.part({cabinet::Kind::Output}, options.part, lastOutput);
    const std::string what = "output " + named(place.number, board.nameOf(cabinet::Kind::Output, place.number));
    options.consent.obtain(board, options.state == "flash" ? "let " + what + " flash"
                                                           : "switch " + what + " " + options.state);
    OpenedBoard &opened = options.opening.open(board);
    check(opened,
          options.state == "flash" ? opened.flashOutput(place.number)
                                   : opened.setOutput(place.number, options.state == "on"),
          "switching " + what + " of " + board.title());
    if (settings.json)
        print({{"board", board.device()}, {"output", place.number}, {"state", options.state}});
    else
        say("%s of %s: %s\n", what.c_str(), board.title().c_str(), options.state.c_str());
    return 0;
}

}  // namespace

Command::Action declareOutput(CLI::App &command)
{
    auto options = std::make_shared<OutputOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("PART", options->part, "the output, 0 to 37 or by name")->required();
    command
        .add_option("STATE", options->state,
                    "on, off or flash. Where no program runs the kept patterns begin empty, and flash then switches "
                    "every other output off")
        ->required()
        ->check(CLI::IsMember({"on", "off", "flash"}));
    options->consent.addTo(command);
    options->opening.addTo(command);
    return [options](const Settings &settings) { return output(*options, settings); };
}

}  // namespace tools
