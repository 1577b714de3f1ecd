// The reels as the board tells of them, and a spin of one.
#include "tools/failure.h"
#include "tools/gate.h"
#include "tools/print.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

constexpr unsigned int lastReel = 2;

struct ReelOptions {
    std::string board, part, action;
    unsigned int steps = 0, mode = 1;
    std::optional<unsigned int> reels, setting, option;
    Consent consent;
};

int reels(const std::string &word, const Settings &settings)
{
    Board board(settings, word);
    board.needFirmware();
    const Answer answer = board.ask("GetReelStatusEx");
    Json list = Json::array();
    for (unsigned int reel = 0; reel <= lastReel; ++reel) {
        Json each = {{"reel", reel}};
        if (const cabinet::Part *part = board.partOf(cabinet::Kind::Reel, reel))
            each["name"] = part->name;
        for (const char *value : {"first", "second", "third", "fourth"})
            each[value] = answer.numbers(value).at(reel);
        list.push_back(each);
    }
    if (settings.json) {
        print({{"board", board.device()}, {"reels", list}});
        return 0;
    }
    say("reel  first  second  third  fourth  name   (what the values mean is the firmware's)\n");
    for (const Json &each : list)
        say("%4u  %5u  %6u  %5u  %6u  %s\n", each["reel"].get<unsigned int>(), each["first"].get<unsigned int>(),
            each["second"].get<unsigned int>(), each["third"].get<unsigned int>(), each["fourth"].get<unsigned int>(),
            each.value("name", "").c_str());
    return 0;
}

int spin(const ReelOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    const cabinet::Place place = board.part({cabinet::Kind::Reel}, options.part, lastReel);
    const std::string what = "reel " + named(place.number, board.nameOf(cabinet::Kind::Reel, place.number));
    if (!options.reels && (options.setting || options.option))
        throw UsageError("--setting and --option configure the drive; allowed together with --reels");
    board.needFirmware();
    options.consent.obtain(board, "spin " + what + " by " + std::to_string(options.steps) + " in mode " +
                                      std::to_string(options.mode));
    if (options.reels)
        board.ask("ConfigureReelsEx", {{"reels", *options.reels},
                                       {"reelSetting", options.setting.value_or(0)},
                                       {"reelOption", options.option.value_or(0)}});
    board.ask("SpinReels", {{"reel", place.number}, {"spinMode", options.mode}, {"steps", options.steps}});
    if (settings.json)
        print({{"board", board.device()}, {"reel", place.number}, {"mode", options.mode}, {"steps", options.steps}});
    else
        say("%s of %s: asked to spin\n", what.c_str(), board.title().c_str());
    return 0;
}

}  // namespace

Command::Action declareReels(CLI::App &command)
{
    auto board = std::make_shared<std::string>();
    command.add_option("BOARD", *board, boardHelp)->required();
    return [board](const Settings &settings) { return reels(*board, settings); };
}

Command::Action declareReel(CLI::App &command)
{
    auto options = std::make_shared<ReelOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("PART", options->part, "the reel, 0 to 2 or by name")->required();
    command.add_option("ACTION", options->action, "spin")->required()->check(CLI::IsMember({"spin"}));
    command.add_option("STEPS", options->steps, "0 to 65535")->required()->check(CLI::Range(0, 65535));
    command.add_option("--mode", options->mode, "spinMode: 0, 1, 2, 254 or 255, the firmware's")
        ->capture_default_str()
        ->check(CLI::IsMember({0, 1, 2, 254, 255}));
    command.add_option("--reels", options->reels, "configures the drive before, for 0 to 3 reels")
        ->check(CLI::Range(0, 3));
    command.add_option("--setting", options->setting, "reelSetting of the configuration, 0 to 65535, the firmware's")
        ->check(CLI::Range(0, 65535));
    command.add_option("--option", options->option, "reelOption of the configuration, 0 to 255, the firmware's")
        ->check(CLI::Range(0, 255));
    options->consent.addTo(command);
    return [options](const Settings &settings) { return spin(*options, settings); };
}

}  // namespace tools
