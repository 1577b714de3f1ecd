// Every board that the machine shows, by what can be learnt without changing anything.
#include "tools/board_report.h"
#include "tools/opening.h"

#include <CLI/CLI.hpp>
#include <unistd.h>

namespace tools
{

namespace
{

std::vector<int> presentDevices()
{
    std::vector<int> present;
    for (int device = 0; device < devices; ++device) {
        if (modelOf(device) || ::access(pathOf(device).c_str(), F_OK) == 0)
            present.push_back(device);
    }
    return present;
}

int list(const Opening &opening, const Settings &settings)
{
    const std::vector<int> present = presentDevices();
    for (const int device : opening.allowed ? present : std::vector<int>{}) {
        Board board(settings, std::to_string(device));
        Opening own;
        own.allowed = true;
        own.open(board);
    }
    std::vector<std::string> paths;
    for (const int device : present)
        paths.push_back(pathOf(device));
    const std::vector<Holders> holders = holdersOf(paths);
    Json boards = Json::array();
    for (std::size_t n = 0; n < present.size(); ++n)
        boards.push_back(reportOf(settings, present[n], holders[n]));
    if (settings.json) {
        print({{"boards", boards}});
        return 0;
    }
    for (const Json &board : boards)
        sayReport(board);
    if (boards.empty())
        say("There is no board: neither a node /dev/Vexa_<n> nor an entry below /sys/class/Vexa\n"
            "Try: plug one in, or sorvane doctor\n");
    return 0;
}

}  // namespace

Command::Action declareList(CLI::App &command)
{
    auto opening = std::make_shared<Opening>();
    opening->addTo(command);
    return [opening](const Settings &settings) { return list(*opening, settings); };
}

}  // namespace tools
