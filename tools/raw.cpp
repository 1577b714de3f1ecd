// Any request, with its answer as bytes and in words.
#include "tools/failure.h"
#include "tools/gate.h"
#include "tools/print.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace tools
{

namespace
{

struct RawOptions {
    std::string board;
    int pipe = 0;
    unsigned int request = 0;
    std::vector<unsigned int> bytes;
    Consent consent;
};

/// Requests that only look; every other one is asked about, as are results and counts that the firmware may forget.
constexpr std::string_view harmless[] = {"FirmwareRuns",
                                         "Get8051Version",
                                         "GetPICVersion",
                                         "GetPICSerialNumber",
                                         "GetDallasSerialNumber",
                                         "GetInputs",
                                         "GetRawInputs",
                                         "GetMultiplexedInputs",
                                         "GetReelStatusEx",
                                         "GetParallelHopperStatus",
                                         "GetClock",
                                         "GetRecordingStatus",
                                         "ReadSRAM",
                                         "ReadEEPROM",
                                         "ReadClockAtBatteryFailure"};

Json jsonOf(const std::vector<protocol::Value> &values)
{
    Json json = Json::object();
    for (const protocol::Value &value : values) {
        Json &told = json[std::string(value.name)];
        if (value.kind == protocol::Kind::Number)
            told = value.numbers.at(0);
        else if (value.kind == protocol::Kind::Numbers || value.kind == protocol::Kind::Bits)
            told = value.numbers;
        else
            told = hexadecimal(value.bytes);
    }
    return json;
}

int raw(const RawOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    const std::vector<unsigned char> payload(options.bytes.begin(), options.bytes.end());
    const auto request = static_cast<unsigned char>(options.request);
    protocol::Exchange exchange{board.model(), request, options.pipe, payload};
    const std::string name = protocol::decode(exchange).name;
    if (std::find(std::begin(harmless), std::end(harmless), name) == std::end(harmless))
        options.consent.obtain(board, "send " + name);
    const Reply reply = board.node().exchange(request, options.pipe, payload);
    exchange.outcome = reply.outcome;
    exchange.status = reply.code;
    exchange.answer = reply.bytes;
    const protocol::Decoded decoded = protocol::decode(exchange);
    if (reply.outcome != protocol::Outcome::Success)
        refuse(name + " on " + board.title(), reply.code);
    const std::string bytes = hexadecimal({reinterpret_cast<const char *>(reply.bytes.data()), reply.bytes.size()});
    if (settings.json) {
        print({{"board", board.device()},
               {"operation", name},
               {"arguments", jsonOf(decoded.arguments)},
               {"answer", bytes},
               {"results", jsonOf(decoded.results)}});
        return 0;
    }
    say("%s\n", protocol::line(decoded).c_str());
    say("answer: %s\n", bytes.empty() ? "no bytes" : bytes.c_str());
    return 0;
}

}  // namespace

Command::Action declareRaw(CLI::App &command)
{
    auto options = std::make_shared<RawOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("PIPE", options->pipe, "1 to 7")->required()->check(CLI::Range(1, 7));
    command.add_option("REQUEST", options->request, "0 to 255; docs/wire.md has them all")
        ->required()
        ->check(CLI::Range(0, 255));
    command.add_option("BYTE", options->bytes, "the payload, 0 to 255 or 0x00 to 0xFF each")->check(CLI::Range(0, 255));
    options->consent.addTo(command);
    return [options](const Settings &settings) { return raw(*options, settings); };
}

}  // namespace tools
