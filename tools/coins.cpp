// The pulses that the board counts on an input, as of a coin mechanism.
#include "tools/failure.h"
#include "tools/gate.h"
#include "tools/print.h"
#include "tools/stop_signals.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

constexpr unsigned int lastCountedInput = 23;
constexpr std::chrono::milliseconds betweenTwoCounts(20);

struct CoinsOptions {
    std::string board, part;
    bool follow = false;
    std::optional<unsigned int> setting, settingEx, active;
    Consent consent;
};

/// The board's check of an input, for as long as somebody follows it.
class InputCheck
{
public:
    InputCheck(Board &board, unsigned int input) : board_(board), input_(input)
    {
        const protocol::Decoded begun = board_.tryToAsk("BeginPulsedInputCheck", {{"input", input_}});
        if (begun.outcome == protocol::Outcome::Failed)
            end();  // it may have begun all the same
        if (begun.outcome != protocol::Outcome::Success)
            refuse("having " + board_.title() + " count", begun.status);
    }
    ~InputCheck() { end(); }
    InputCheck(const InputCheck &) = delete;
    InputCheck &operator=(const InputCheck &) = delete;

private:
    void end() { board_.tryToAsk("EndPulsedInputCheck", {{"input", input_}}); }

    Board &board_;
    unsigned int input_;
};

void configure(Board &board, unsigned int input, const CoinsOptions &options)
{
    if (!options.setting && !options.settingEx && !options.active)
        return;
    const std::uint32_t setting = options.setting.value_or(0), active = options.active.value_or(0);
    if (board.has("ConfigurePulsedInputEx"))
        board.ask("ConfigurePulsedInputEx", {{"input", input},
                                             {"inputSetting", setting},
                                             {"activeState", active},
                                             {"inputSettingEx", options.settingEx.value_or(0)}});
    else if (options.settingEx)
        throw UsageError("an R20 has no --setting-ex");
    else
        board.ask("ConfigurePulsedInput", {{"input", input}, {"inputSetting", setting}, {"activeState", active}});
}

unsigned int counterOf(Board &board, unsigned int input)
{
    return board.ask("ReadPulsedInputCounter", {{"input", input}}).number("counter");
}

void follow(Board &board, unsigned int input, const std::string &name, unsigned int counter, const Settings &settings)
{
    StopSignals signals;
    const InputCheck checking(board, input);
    unsigned int all = 0;
    while (!signals.wait(betweenTwoCounts)) {
        const unsigned int now = counterOf(board, input);
        const unsigned int more = (now - counter) & 0xFF;  // it counts to 255 and again from 0
        counter = now;
        all += more;
        if (more && settings.json)
            printLine({{"time", timeOfDay()}, {"input", input}, {"pulses", more}, {"counter", now}, {"all", all}});
        else if (more)
            say("%s  input %s: %u more, %u in all\n", timeOfDay().c_str(), named(input, name).c_str(), more, all);
    }
}

int coins(const CoinsOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    using cabinet::Kind;
    const cabinet::Place place =
        board.part({Kind::Coin, Kind::CcTalkCoin, Kind::Input}, options.part, lastCountedInput);
    if (place.part && place.part->kind == Kind::CcTalkCoin)
        throw UsageError("coin \"" + options.part +
                         "\" is told by a ccTalk acceptor and not counted on an input; "
                         "allowed: an input 0 to 23, or a coin with an input");
    const std::string name = place.part ? place.part->name : "";
    board.needFirmware();
    options.consent.obtain(board, "read the counter of input " + named(place.number, name) +
                                      (options.follow ? " and have the board count its pulses" : ""));
    configure(board, place.number, options);
    const unsigned int counter = counterOf(board, place.number);
    if (settings.json)
        print({{"board", board.device()}, {"input", place.number}, {"name", name}, {"counter", counter}});
    else
        say("counter of input %s: %u\n", named(place.number, name).c_str(), counter);
    if (options.follow)
        follow(board, place.number, name, counter, settings);
    return 0;
}

}  // namespace

Command::Action declareCoins(CLI::App &command)
{
    auto options = std::make_shared<CoinsOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("PART", options->part, "the coin's input, 0 to 23, or its name")->required();
    command.add_flag("--follow", options->follow, "has the board count, and tells each coin, until Ctrl-C");
    const CLI::Range byte(0, 255);
    command
        .add_option("--setting", options->setting,
                    "inputSetting, the firmware's; without one of these three the "
                    "input keeps its configuration")
        ->check(byte);
    command.add_option("--setting-ex", options->settingEx, "inputSettingEx, the firmware's")->check(byte);
    command.add_option("--active", options->active, "ActiveState, the firmware's")->check(byte);
    options->consent.addTo(command);
    return [options](const Settings &settings) { return coins(*options, settings); };
}

}  // namespace tools
