// One board, as list tells of it; with --open made ready first.
#include "tools/board_report.h"
#include "tools/failure.h"
#include "tools/opening.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

struct InfoOptions {
    std::string board;
    Opening opening;
};

int info(InfoOptions &options, const Settings &settings)
{
    const int device = deviceFrom(options.board, settings.cabinet);
    if (options.opening.allowed) {
        Board board(settings, options.board);
        options.opening.open(board);
    }
    const Json report = reportOf(settings, device, holdersOf({pathOf(device)}).front());
    if (settings.json)
        print(report);
    else
        sayReport(report);
    if (!report.contains("error"))
        return 0;
    if (!settings.json)
        say("Try: sorvane doctor\n");
    return statusOfFailure;
}

}  // namespace

Command::Action declareInfo(CLI::App &command)
{
    auto options = std::make_shared<InfoOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    options->opening.addTo(command);
    return [options](const Settings &settings) { return info(*options, settings); };
}

}  // namespace tools
