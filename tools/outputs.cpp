// The two flash patterns that all processes share: what programs have asked of the board's outputs. Nothing is sent.
#include "inspect/arena_report.h"
#include "tools/board.h"
#include "tools/failure.h"
#include "tools/print.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

constexpr unsigned int outputCount = 38;

const char *stateOf(const ArenaContents::Device &shared, unsigned int output)
{
    const bool on = shared.onPattern[output / 8] >> output % 8 & 1;
    const bool off = shared.offPattern[output / 8] >> output % 8 & 1;
    return on && off ? "on" : on ? "flashes, on in the on period" : off ? "flashes, on in the off period" : "off";
}

int outputs(const std::string &word, const Settings &settings)
{
    const int device = deviceFrom(word, settings.cabinet);
    if (!modelOf(device))
        throw Refusal("there is no board with the device number " + std::to_string(device),
                      "Try: sorvane list shows the boards that are there");
    const ArenaReport arena = reportArena();
    const bool shared = arena.segmentID != -1;
    Json list = Json::array();
    for (unsigned int output = 0; shared && output < outputCount; ++output) {
        Json each = {{"output", output}};
        if (const cabinet::Part *part = settings.cabinet.part(device, cabinet::Kind::Output, output))
            each["name"] = part->name;
        each["state"] = stateOf(arena.devices[device], output);
        list.push_back(each);
    }
    if (settings.json) {
        print({{"board", device}, {"shared", shared}, {"outputs", list}});
        return 0;
    }
    if (!shared) {
        say("No program keeps output patterns: the shared memory is not there. What the board shows is not known.\n");
        return 0;
    }
    say("output  asked for by programs            name\n");
    for (const Json &each : list)
        say("%6u  %-31s  %s\n", each["output"].get<unsigned int>(), each["state"].get<std::string>().c_str(),
            each.value("name", "").c_str());
    return 0;
}

}  // namespace

Command::Action declareOutputs(CLI::App &command)
{
    auto board = std::make_shared<std::string>();
    command.add_option("BOARD", *board, boardHelp)->required();
    return [board](const Settings &settings) { return outputs(*board, settings); };
}

}  // namespace tools
