// Whether the board's firmware runs; and loading it, which is done by opening the board through the library.
#include "tools/gate.h"
#include "tools/opening.h"
#include "tools/print.h"
#include "tools/stand_in.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

struct FirmwareOptions {
    std::string board, action;
    Consent consent;
    Opening opening;
};

void load(Board &board, FirmwareOptions &options)
{
    refuseStandIn(board);
    options.consent.obtain(board, "load the firmware");
    options.opening.allowed = true;
    options.opening.open(board);
}

int firmware(FirmwareOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    const bool loading = !options.action.empty() && !board.firmwareRuns();
    if (loading)
        load(board, options);
    const bool runs = board.firmwareRuns();
    const bool standIn = isStandIn(board.model());
    std::string version;
    if (runs)
        version = readable(board.ask("Get8051Version").bytes("version"));
    if (settings.json) {
        print({{"board", board.device()},
               {"runs", runs},
               {"version", version},
               {"loaded", loading},
               {"image", standIn ? "stand-in" : "vendor's"}});
        return 0;
    }
    say("firmware of %s: %s%s\n", board.title().c_str(), runs ? "runs, " : "does not run", version.c_str());
    if (loading)
        say("It was loaded, and the board was told which EEPROM it carries\n");
    else if (!options.action.empty())
        say("It ran already: nothing was loaded\n");
    say("The image of this build for an %s is %s\n", nameOf(board.model()),
        standIn ? "a stand-in that only idles: real boards are not loaded with it" : "the vendor's");
    return 0;
}

}  // namespace

Command::Action declareFirmware(CLI::App &command)
{
    auto options = std::make_shared<FirmwareOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command
        .add_option("ACTION", options->action,
                    "load: where the firmware does not run, loads it and finds out and configures the EEPROM, as every "
                    "opening by a program does")
        ->check(CLI::IsMember({"load"}));
    options->consent.addTo(command);
    return [options](const Settings &settings) { return firmware(*options, settings); };
}

}  // namespace tools
