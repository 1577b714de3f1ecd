// The inputs as they are, and how they change. Only what is asked for by --changed is reset by being read.
#include "tools/board.h"
#include "tools/failure.h"
#include "tools/gate.h"
#include "tools/print.h"
#include "tools/stop_signals.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace tools
{

namespace
{

constexpr unsigned int inputCount = 33;

struct InputsOptions {
    std::string board;
    bool follow = false, raw = false, changed = false, multiplexed = false;
    unsigned int everyMs = 10;
    Consent consent;
};

struct Look {
    std::vector<bool> inputs = std::vector<bool>(inputCount);  // of multiplexed inputs: 96
    unsigned int leadByte = 0;

    bool operator==(const Look &) const = default;
};

Look look(Board &board, const InputsOptions &options)
{
    Look look;
    if (options.multiplexed) {
        const Answer answer = board.ask("GetMultiplexedInputs");
        const std::string groups = answer.bytes("groups");
        look.leadByte = answer.number("leadByte");
        look.inputs.assign(8 * groups.size(), false);
        for (std::size_t bit = 0; bit < look.inputs.size(); ++bit)
            look.inputs[bit] = static_cast<unsigned char>(groups[bit / 8]) >> bit % 8 & 1;
        return look;
    }
    const char *operation = options.raw ? "GetRawInputs" : options.changed ? "GetChangedInputs" : "GetInputs";
    const std::vector<std::uint32_t> bits = board.ask(operation).numbers("inputs");
    for (const std::uint32_t bit : bits) {
        if (bit < inputCount)
            look.inputs[bit] = true;
    }
    return look;
}

/// What an input is called, and whether it is on: it may be active at its low level.
struct Told {
    std::string name;
    bool high;
    bool on;
};

Told told(const Board &board, const InputsOptions &options, std::size_t input, bool high)
{
    if (options.multiplexed)
        return {"", high, high};
    const auto number = static_cast<unsigned int>(input);
    const cabinet::Part *part = board.partOf(cabinet::Kind::Input, number);
    for (const cabinet::Kind other : {cabinet::Kind::Coin, cabinet::Kind::Hopper})
        part = part ? part : board.partOf(other, number);
    const bool low = part && part->kind == cabinet::Kind::Input && part->activeLow;
    return {part ? part->name : "", high, options.changed ? high : high != low};
}

Json jsonOf(std::size_t input, const Told &told)
{
    Json json = {{"input", input}};
    if (!told.name.empty())
        json["name"] = told.name;
    json["level"] = told.high ? "high" : "low";
    json["on"] = told.on;
    return json;
}

void tellState(const Settings &settings, const Board &board, const InputsOptions &options, const Look &look)
{
    Json list = Json::array();
    for (std::size_t input = 0; input < look.inputs.size(); ++input)
        list.push_back(jsonOf(input, told(board, options, input, look.inputs[input])));
    Json state = {{"board", board.device()}};
    if (options.multiplexed)
        state["lead_byte"] = look.leadByte;
    state["inputs"] = list;
    if (settings.json)
        return print(state);
    if (options.multiplexed)
        say("lead byte %u%s\n", look.leadByte, look.leadByte ? "" : " (the groups may not be selected)");
    say("input  %-5s  %-4s  name\n", options.changed ? "" : "level", options.changed ? "" : "is");
    for (const Json &each : list) {
        if (options.changed && each["level"] == "low")
            continue;
        say("%5u  %-5s  %-4s  %s\n", each["input"].get<unsigned int>(),
            options.changed ? "" : each["level"].get<std::string>().c_str(),
            options.changed ? "new"
            : each["on"]    ? "ON"
                            : "off",
            each.value("name", "").c_str());
    }
}

void tellChange(const Settings &settings, const Board &board, const InputsOptions &options, std::size_t input,
                bool high)
{
    const Told now = told(board, options, input, high);
    if (settings.json) {
        Json json = {{"time", timeOfDay()}};
        json.update(jsonOf(input, now));
        return printLine(json);
    }
    say("%s  input %s %s\n", timeOfDay().c_str(), named(static_cast<unsigned int>(input), now.name).c_str(),
        options.changed ? "has changed"
        : now.on        ? "on"
                        : "off");
}

void follow(const Settings &settings, Board &board, const InputsOptions &options, Look before)
{
    StopSignals signals;
    while (!signals.wait(std::chrono::milliseconds(options.everyMs))) {
        const Look now = look(board, options);
        for (std::size_t input = 0; input < now.inputs.size(); ++input) {
            if (options.changed ? now.inputs[input] : now.inputs[input] != before.inputs[input])
                tellChange(settings, board, options, input, now.inputs[input]);
        }
        before = now;
    }
}

int inputs(const InputsOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    board.needFirmware();
    if (options.changed)
        options.consent.obtain(board, "take the set of changed inputs, which the board may forget by that");
    const Look first = look(board, options);
    tellState(settings, board, options, first);
    if (options.follow)
        follow(settings, board, options, first);
    return 0;
}

}  // namespace

Command::Action declareInputs(CLI::App &command)
{
    auto options = std::make_shared<InputsOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_flag("--follow", options->follow, "then every change with its time, until Ctrl-C");
    command.add_option("--every", options->everyMs, "milliseconds from one look to the next")
        ->capture_default_str()
        ->check(CLI::Range(1, 60000));
    CLI::Option *raw = command.add_flag("--raw", options->raw, "the board's raw inputs");
    CLI::Option *changed =
        command.add_flag("--changed", options->changed, "the board's set of changed inputs; reading may empty it");
    CLI::Option *multiplexed =
        command.add_flag("--multiplexed", options->multiplexed, "the four groups of multiplexed inputs");
    raw->excludes(changed)->excludes(multiplexed);
    changed->excludes(multiplexed);
    options->consent.addTo(command);
    return [options](const Settings &settings) { return inputs(*options, settings); };
}

}  // namespace tools
