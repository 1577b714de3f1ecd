// Numbers of the board's random number generator.
#include "tools/failure.h"
#include "tools/gate.h"
#include "tools/print.h"
#include "tools/progress.h"
#include "tools/stop_signals.h"

#include <CLI/CLI.hpp>
#include <fstream>

namespace tools
{

namespace
{

struct RandomOptions {
    std::string board, file;
    unsigned int count = 0;
    std::optional<std::uint32_t> enable;
    Consent consent;
};

std::uint32_t draw(Board &board)
{
    const protocol::Decoded drawn = board.tryToAsk("GetRandomNumber");
    if (drawn.outcome == protocol::Outcome::Refused)
        throw Refusal("drawing a number on " + board.title() + ": code " + std::to_string(drawn.status) +
                          ", a status of the board's own; its generator may be off",
                      "Try: --enable SETTING switches it on", drawn.status);
    if (drawn.outcome == protocol::Outcome::Failed)
        refuse("drawing a number on " + board.title(), drawn.status);
    return Answer(drawn).number("number");
}

int random(const RandomOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    board.needFirmware();
    if (options.enable)
        options.consent.obtain(board, "switch the random number generator on");
    std::ofstream file;
    if (!options.file.empty()) {
        file.open(options.file, std::ios::binary);
        if (!file)
            throw Refusal(options.file + ": it cannot be written");
    }
    if (options.enable)
        board.ask("EnableRandomNumberGenerator", {{"setting", *options.enable}});
    StopSignals signals;
    Progress progress(options.count, "numbers");
    Json numbers = Json::array();
    unsigned int drawn = 0;
    for (; drawn < options.count && !signals.arrived(); progress.at(++drawn)) {
        const std::uint32_t number = draw(board);
        if (file.is_open())
            file.put(static_cast<char>(number & 0xFF)).put(static_cast<char>(number >> 8));
        else if (settings.json)
            numbers.push_back(number);
        else
            say("%u\n", number);
    }
    if (file.is_open() && !file.flush())
        throw Refusal(options.file + ": it could not be written to its end");
    Json report = {{"board", board.device()}, {"drawn", drawn}};
    if (file.is_open())
        report["file"] = options.file;
    else
        report["numbers"] = numbers;
    if (settings.json)
        print(report);
    else if (file.is_open())
        say("%s: %u numbers of two bytes, the low one first\n", options.file.c_str(), drawn);
    return drawn == options.count ? 0 : statusOfFailure;
}

}  // namespace

Command::Action declareRandom(CLI::App &command)
{
    auto options = std::make_shared<RandomOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("COUNT", options->count, "how many numbers")->required();
    command.add_option("--out", options->file, "a file for them, two bytes each, the low one first");
    command.add_option("--enable", options->enable, "switches the generator on before, with this setting");
    options->consent.addTo(command);
    return [options](const Settings &settings) { return random(*options, settings); };
}

}  // namespace tools
