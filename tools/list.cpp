// Every board that the machine shows, by what can be learnt without changing anything.
#include "tools/board_report.h"
#include "tools/failure.h"
#include "tools/opening.h"

#include <CLI/CLI.hpp>
#include <map>
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
    std::map<int, std::string> refused;
    for (const int device : opening.allowed ? present : std::vector<int>{}) {
        try {
            Board board(settings, std::to_string(device));
            Opening own;
            own.allowed = true;
            own.beside = opening.beside;
            own.open(board);
        } catch (const Refusal &refusal) {
            refused[device] = refusal.what();
        }
    }
    std::vector<std::string> paths;
    for (const int device : present)
        paths.push_back(pathOf(device));
    const std::vector<Holders> holders = holdersOf(paths);
    Json boards = Json::array();
    int status = 0;
    for (std::size_t n = 0; n < present.size(); ++n) {
        Json board = reportOf(settings, present[n], holders[n]);
        if (const auto found = refused.find(present[n]); found != refused.end())
            board.emplace("error", found->second);
        if (board.contains("error"))
            status = statusOfFailure;
        boards.push_back(std::move(board));
    }
    if (settings.json) {
        print({{"boards", boards}});
        return status;
    }
    for (const Json &board : boards)
        sayReport(board);
    if (boards.empty())
        say("There is no board: neither a node /dev/Vexa_<n> nor an entry below /sys/class/Vexa\n"
            "Try: plug one in, or sorvane doctor\n");
    return status;
}

}  // namespace

Command::Action declareList(CLI::App &command)
{
    auto opening = std::make_shared<Opening>();
    opening->addTo(command);
    return [opening](const Settings &settings) { return list(*opening, settings); };
}

}  // namespace tools
