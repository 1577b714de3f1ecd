// The SRAM, or one of its pages of 16 KiB, to a file and back.
#include "tools/failure.h"
#include "tools/files.h"
#include "tools/gate.h"
#include "tools/print.h"
#include "tools/progress.h"
#include "tools/sram_access.h"
#include "tools/stop_signals.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

struct SRAMOptions {
    std::string board, action, file;
    std::optional<std::size_t> page;
    Consent consent;
};

struct Range {
    std::size_t address, length;
};

Range rangeFrom(const SRAMOptions &options, protocol::Model model)
{
    const std::size_t all = sramBytes(model);
    if (!options.page)
        return {0, all};
    const std::size_t address = *options.page * sramPageBytes;
    if (address >= all)
        throw UsageError("--page " + std::to_string(*options.page) + ": allowed on an " + nameOf(model) + ": 0 to " +
                         std::to_string((all - 1) / sramPageBytes));
    return {address, std::min(sramPageBytes, all - address)};
}

[[noreturn]] void refuseHalf(const std::string &what, std::size_t done, std::size_t all)
{
    throw Refusal(what + " was stopped after " + std::to_string(done) + " of " + std::to_string(all) + " bytes");
}

std::string readAll(Board &board, const Range &range)
{
    StopSignals signals;
    Progress progress(range.length);
    std::string bytes;
    while (bytes.size() < range.length) {
        if (signals.arrived())
            refuseHalf("reading", bytes.size(), range.length);
        bytes += readSRAMChunk(board, range.address + bytes.size(), range.length - bytes.size());
        progress.at(bytes.size());
    }
    return bytes;
}

void writeAll(Board &board, const Range &range, std::string_view bytes)
{
    StopSignals signals;
    Progress progress(range.length);
    for (std::size_t done = 0; done < bytes.size(); progress.at(done)) {
        if (signals.arrived())
            refuseHalf("writing", done, bytes.size());
        try {
            done += writeSRAMChunk(board, range.address + done, bytes.substr(done));
        } catch (const Refusal &refusal) {
            throw Refusal(std::string(refusal.what()) + "; before, " + std::to_string(done) + " of " +
                              std::to_string(bytes.size()) + " bytes were written",
                          refusal.advice(), refusal.code());
        }
    }
}

void restore(Board &board, const SRAMOptions &options, const Range &range)
{
    const std::string bytes = readFile(options.file);
    if (bytes.size() != range.length)
        throw Refusal(options.file + " has " + std::to_string(bytes.size()) + " bytes and not the " +
                          std::to_string(range.length) + " that would be written",
                      "Try: a dump of the same model, and the --page that was dumped");
    board.needFirmware();
    options.consent.obtain(board, "write " + std::to_string(range.length) + " bytes of its SRAM");
    writeAll(board, range, bytes);
    if (const std::string difference = firstDifference(bytes, readAll(board, range), range.address);
        !difference.empty())
        throw Refusal("what was written reads back differently, " + difference);
}

int sram(const SRAMOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    const Range range = rangeFrom(options, board.model());
    if (options.action == "restore") {
        restore(board, options, range);
    } else {
        board.needFirmware();
        writeFile(options.file, readAll(board, range));
    }
    if (settings.json)
        print({{"board", board.device()},
               {"action", options.action},
               {"address", range.address},
               {"bytes", range.length},
               {"file", options.file}});
    else
        say("%s: %zu bytes from address %zu %s\n", options.file.c_str(), range.length, range.address,
            options.action == "dump" ? "read" : "written, and read back alike");
    return 0;
}

}  // namespace

Command::Action declareSram(CLI::App &command)
{
    auto options = std::make_shared<SRAMOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("ACTION", options->action, "dump or restore")
        ->required()
        ->check(CLI::IsMember({"dump", "restore"}));
    command.add_option("FILE", options->file, "the bytes as they are")->required();
    command.add_option("--page", options->page, "the 16 KiB from address N * 16384 alone");
    options->consent.addTo(command);
    return [options](const Settings &settings) { return sram(*options, settings); };
}

}  // namespace tools
