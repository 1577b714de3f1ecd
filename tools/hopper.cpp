// Pays coins out of a hopper, tells its state, stops it. However paying ends, the hopper is told to stop; an R20 has no
// such request, so it is asked for one coin at a time.
#include "api/sorvaneusb_types.h"
#include "tools/failure.h"
#include "tools/gate.h"
#include "tools/print.h"
#include "tools/stop_signals.h"

#include <CLI/CLI.hpp>
#include <thread>
#include <unistd.h>

namespace tools
{

namespace
{

constexpr unsigned int lastHopperInput = 23;  // the state of a hopper on a higher one cannot be read
constexpr std::chrono::milliseconds betweenTwoStates(20);

struct HopperOptions {
    std::string board, part, action;
    std::optional<unsigned int> count, output;
    unsigned int setting = 0, settingEx = 0, active = 1, hopperSetting = 0;
    Consent consent;
};

struct State {
    unsigned int status = 0, hopperByte = 0;

    bool isPaying() const { return status == usbHopperActive; }
};

class Hopper
{
public:
    Hopper(Board &board, unsigned int input) : board_(board), input_(input) {}

    State state()
    {
        const Answer answer = board_.ask("GetParallelHopperStatus", {{"input", input_}});
        return {answer.number("status"), answer.number("hopperByte")};
    }

    void release(unsigned int output, unsigned int coins, const HopperOptions &options)
    {
        const char *operation = isStoppable() ? "ReleaseParallelHopperCoinsEx" : "ReleaseParallelHopperCoins";
        const protocol::Decoded asked = board_.tryToAsk(operation, {{"input", input_},
                                                                    {"inputSetting", options.setting},
                                                                    {"activeState", options.active},
                                                                    {"hopperOutput", output},
                                                                    {"coinCount", coins},
                                                                    {"hopperSetting", options.hopperSetting},
                                                                    {"inputSettingEx", options.settingEx}});
        isReleased_ = asked.outcome != protocol::Outcome::Refused;  // one that failed may pay all the same
        if (asked.outcome != protocol::Outcome::Success)
            refuse("paying on " + board_.title(), asked.status);
    }

    bool isStoppable() const { return board_.has("StopHopperCoinRelease"); }
    void stop() { board_.ask("StopHopperCoinRelease", {{"input", input_}}); }
    void hasEnded() { isReleased_ = false; }

    ~Hopper()
    {
        if (!isReleased_ || !isStoppable())
            return;
        constexpr int attempts = 5;  // one exchange that fails must not leave it running
        for (int attempt = 0; attempt < attempts; ++attempt) {
            if (board_.tryToAsk("StopHopperCoinRelease", {{"input", input_}}).outcome == protocol::Outcome::Success)
                return;
            std::this_thread::sleep_for(betweenTwoStates);
        }
        std::fprintf(stderr, "sorvane: the hopper on input %u of %s could not be told to stop: IT MAY STILL PAY\n",
                     input_, board_.path().c_str());
    }
    Hopper(const Hopper &) = delete;
    Hopper &operator=(const Hopper &) = delete;

private:
    Board &board_;
    unsigned int input_;
    bool isReleased_ = false;
};

/// What is told at the end. Whether status and hopper byte say how many coins fell is the firmware's.
struct Payout {
    unsigned int asked = 0;     ///< of the board
    unsigned int releases = 0;  ///< an R20's, of a coin each, that came to their end
    bool stopped = false;
    State last;
};

void showWhilePaying(const State &state, unsigned int asked)
{
    if (::isatty(STDERR_FILENO))
        std::fprintf(stderr, "\r\033[Kasked for %u: status %u, hopper byte %u", asked, state.status, state.hopperByte);
}

/// Waits until the hopper has ended what it was asked for. False: there was a wish to stop before.
bool waitForEnd(Hopper &hopper, Payout &payout, StopSignals &signals)
{
    while ((payout.last = hopper.state()).isPaying()) {
        showWhilePaying(payout.last, payout.asked);
        if (signals.wait(betweenTwoStates))
            return false;
    }
    hopper.hasEnded();
    return true;
}

Payout payAtOnce(Hopper &hopper, unsigned int output, const HopperOptions &options, StopSignals &signals)
{
    Payout payout;
    if ((payout.stopped = signals.arrived()))
        return payout;
    payout.asked = *options.count;
    hopper.release(output, payout.asked, options);
    if (!waitForEnd(hopper, payout, signals)) {
        hopper.stop();
        payout.stopped = true;
        payout.last = hopper.state();
        if (!payout.last.isPaying())
            hopper.hasEnded();
    }
    return payout;
}

/// It falls in any case; to know that it has fallen is worth a moment.
bool waitForCoinUnderWay(Hopper &hopper, Payout &payout)
{
    constexpr std::chrono::seconds patience(3);
    const auto end = std::chrono::steady_clock::now() + patience;
    while ((payout.last = hopper.state()).isPaying() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(betweenTwoStates);
    return !payout.last.isPaying();
}

Payout payCoinByCoin(Hopper &hopper, unsigned int output, const HopperOptions &options, StopSignals &signals)
{
    Payout payout;
    std::optional<State> usual;  // how the first coin ended; one that ends otherwise ends the payout
    while (payout.asked < *options.count && !signals.arrived()) {
        ++payout.asked;
        hopper.release(output, 1, options);
        if (!waitForEnd(hopper, payout, signals) && !waitForCoinUnderWay(hopper, payout))
            break;
        ++payout.releases;
        if (!usual)
            usual = payout.last;
        if (payout.last.status != usual->status)
            break;
    }
    payout.stopped = payout.asked < *options.count || payout.last.isPaying();
    return payout;
}

int tellEnd(const Payout &payout, const Board &board, const Settings &settings, bool byCoins, unsigned int wanted)
{
    if (::isatty(STDERR_FILENO))
        std::fputs("\r\033[K", stderr);
    if (settings.json) {
        Json end = {{"board", board.device()}, {"wanted", wanted}, {"asked", payout.asked}};
        if (byCoins)
            end["releases_ended"] = payout.releases;
        end["stopped"] = payout.stopped;
        end["status"] = payout.last.status;
        end["hopper_byte"] = payout.last.hopperByte;
        print(end);
        return payout.stopped ? statusOfFailure : 0;
    }
    if (byCoins)
        say("%s: asked for %u of %u coins, one at a time; %u of these releases have ended\n",
            payout.stopped ? "Stopped" : "Done", payout.asked, wanted, payout.releases);
    else
        say("%s: asked for %u coins\n", payout.stopped ? "Stopped" : "Done", payout.asked);
    say("The board tells: status %u, hopper byte %u (of the last release; both are the firmware's)%s\n",
        payout.last.status, payout.last.hopperByte, payout.last.isPaying() ? ". It still pays the coin under way" : "");
    return payout.stopped ? statusOfFailure : 0;
}

int pay(Board &board, const cabinet::Place &place, const HopperOptions &options, const Settings &settings)
{
    const std::optional<unsigned int> output = options.output ? options.output
                                               : place.part   ? place.part->output
                                                              : std::nullopt;
    if (!options.count || !output)
        throw UsageError(!options.count
                             ? "how many coins? Allowed: pay COUNT, 0 to 65535"
                             : "which output drives the hopper? Allowed: --output 0 to 37, or a hopper of the "
                               "cabinet file that has one");
    board.needFirmware();
    options.consent.obtain(board, "pay " + std::to_string(*options.count) + " coins out of hopper " + options.part +
                                      " (input " + std::to_string(place.number) + ", output " +
                                      std::to_string(*output) + ")");
    if (Hopper(board, place.number).state().isPaying())
        throw Refusal("the hopper pays already", "Try: wait until it has ended, or sorvane hopper ... stop");
    StopSignals signals({SIGQUIT, SIGTSTP, SIGTTOU});
    Hopper hopper(board, place.number);  // behind the signals: they stay away until it has been stopped
    const bool byCoins = !hopper.isStoppable();
    const Payout payout =
        byCoins ? payCoinByCoin(hopper, *output, options, signals) : payAtOnce(hopper, *output, options, signals);
    return tellEnd(payout, board, settings, byCoins, *options.count);
}

int hopper(const HopperOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    const cabinet::Place place = board.part({cabinet::Kind::Hopper}, options.part, lastHopperInput);
    if (options.action == "pay")
        return pay(board, place, options, settings);
    Hopper hopper(board, place.number);
    if (options.action == "stop") {
        options.consent.needNobodyElse(board, "stop hopper " + options.part);  // to be asked would take time
        board.needFirmware();
        hopper.stop();
    }
    board.needFirmware();
    const State state = hopper.state();
    if (settings.json)
        print({{"board", board.device()},
               {"input", place.number},
               {"paying", state.isPaying()},
               {"status", state.status},
               {"hopper_byte", state.hopperByte}});
    else
        say("hopper on input %s: %s; status %u, hopper byte %u\n",
            named(place.number, board.nameOf(cabinet::Kind::Hopper, place.number)).c_str(),
            state.isPaying() ? "pays" : "does not pay", state.status, state.hopperByte);
    return 0;
}

}  // namespace

Command::Action declareHopper(CLI::App &command)
{
    auto options = std::make_shared<HopperOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("PART", options->part, "the hopper, by the input that its coins pass, 0 to 23, or by name")
        ->required();
    command.add_option("ACTION", options->action, "pay COUNT, stop or status")
        ->required()
        ->check(CLI::IsMember({"pay", "stop", "status"}));
    command.add_option("COUNT", options->count, "coins to pay")->check(CLI::Range(0, 65535));
    command.add_option("--output", options->output, "its drive, where the cabinet file does not tell it")
        ->check(CLI::Range(0, 37));
    const CLI::Range byte(0, 255);
    const auto number = [&](const char *name, unsigned int &value, const char *help) {
        command.add_option(name, value, help)->check(byte)->capture_default_str();
    };
    number("--setting", options->setting, "inputSetting of the coin input, the firmware's");
    number("--setting-ex", options->settingEx, "inputSettingEx of the coin input, the firmware's; not on an R20");
    number("--active", options->active, "ActiveState of the coin input, the firmware's");
    number("--hopper-setting", options->hopperSetting, "hopperSetting, the firmware's");
    options->consent.addTo(command);
    return [options](const Settings &settings) { return hopper(*options, settings); };
}

}  // namespace tools
