// The meters of the cabinet file, as they stand in the EEPROM.
#include "tools/failure.h"
#include "tools/opening.h"
#include "tools/print.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

struct MetersOptions {
    std::string board;
    Opening opening;
};

std::vector<const cabinet::Part *> metersOf(const cabinet::Board *board)
{
    std::vector<const cabinet::Part *> meters;
    if (!board)
        return meters;
    for (const cabinet::Part &part : board->parts) {
        if (part.kind == cabinet::Kind::Meter)
            meters.push_back(&part);
    }
    return meters;
}

std::uint64_t valueOf(OpenedBoard &opened, const cabinet::Part &meter)
{
    unsigned char bytes[8] = {};
    check(opened, opened.readEEPROM(meter.number, bytes, meter.bytes), "reading meter " + meter.name);
    std::uint64_t value = 0;
    for (unsigned int n = 0; n < meter.bytes; ++n)
        value = value << 8 | bytes[meter.bigEndian ? n : meter.bytes - 1 - n];
    return value;
}

int meters(MetersOptions &options, const Settings &settings)
{
    const auto meters = metersOf(settings.cabinet.board(deviceFrom(options.board, settings.cabinet)));
    if (meters.empty())
        throw UsageError("no meters are known; allowed: --cabinet FILE with meters for this board");
    Board board(settings, options.board);
    OpenedBoard &opened = options.opening.open(board);
    Json list = Json::array();
    for (const cabinet::Part *meter : meters)
        list.push_back({{"meter", meter->name}, {"address", meter->number}, {"value", valueOf(opened, *meter)}});
    if (settings.json) {
        print({{"board", board.device()}, {"meters", list}});
        return 0;
    }
    for (const Json &each : list)
        say("%-20s %llu\n", each["meter"].get<std::string>().c_str(),
            static_cast<unsigned long long>(each["value"].get<std::uint64_t>()));
    return 0;
}

}  // namespace

Command::Action declareMeters(CLI::App &command)
{
    auto options = std::make_shared<MetersOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    options->opening.addTo(command);
    return [options](const Settings &settings) { return meters(*options, settings); };
}

}  // namespace tools
