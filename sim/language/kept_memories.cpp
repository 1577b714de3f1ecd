#include "sim/language/kept_memories.h"

#include "sim/language/files.h"

#include <cstdio>
#include <set>
#include <unistd.h>

namespace sim
{

namespace
{

// The program memory within the SRAM loses its contents with the power.
bool isKept(const VirtualBoard &board, std::size_t address)
{
    const std::size_t page = address / sramPageSize;
    return board.model() == Model::R20 || page < firstFirmwarePage || page > lastFirmwarePage;
}

Bytes contentsFor(const std::string &file, std::size_t size)
{
    Bytes bytes = bytesOfFile(file);
    if (bytes.size() != size)
        throw UsageError("\"" + file + "\" has " + std::to_string(bytes.size()) + " bytes; allowed are " +
                         std::to_string(size) + ", as in the board, or no such file yet");
    return bytes;
}

// Found out before a program starts, not at its end.
void requireFolder(const std::string &file)
{
    const std::size_t slash = file.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : file.substr(0, slash + 1);
    if (::access(folder.c_str(), W_OK | X_OK) != 0)
        throw UsageError("\"" + file + "\" could not be written; allowed is a file in a folder that can be");
}

bool exists(const std::string &file)
{
    return ::access(file.c_str(), F_OK) == 0;
}

template <class Memory>
Bytes contentsOf(const Memory &memory)
{
    Bytes bytes(memory.size());
    for (std::size_t at = 0; at < bytes.size(); ++at)
        bytes[at] = memory.at(at);
    return bytes;
}

void load(VirtualBoard &board, const BoardOptions &options)
{
    if (exists(options.eepromFile)) {
        const Bytes bytes = contentsFor(options.eepromFile, board.eeprom().size());
        for (std::size_t at = 0; at < bytes.size(); ++at)
            board.eeprom().set(at, bytes[at]);
    }
    if (exists(options.sramFile)) {
        SRAM &sram = board.sram();
        const Bytes bytes = contentsFor(options.sramFile, sram.size());
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            if (isKept(board, at))
                sram.set(at, bytes[at]);
        }
    }
}

void write(VirtualBoard &board, const BoardOptions &options)
{
    if (!options.eepromFile.empty())
        writeFile(options.eepromFile, contentsOf(board.eeprom()));
    if (!options.sramFile.empty())
        writeFile(options.sramFile, contentsOf(board.sram()));
}

}  // namespace

void loadMemories(VirtualBoards &boards, const std::vector<BoardOptions> &options)
{
    std::set<std::string> files;
    for (const BoardOptions &each : options) {
        try {
            for (const std::string &file : {each.eepromFile, each.sramFile}) {
                if (file.empty())
                    continue;
                if (!files.insert(file).second)
                    throw UsageError("\"" + file + "\" stands there twice; allowed is one file for each memory");
                requireFolder(file);
            }
            load(*boards.find(each.deviceNo), each);
        } catch (const UsageError &error) {
            throw UsageError("board " + std::to_string(each.deviceNo) + ": " + error.what());
        }
    }
}

void keepMemories(VirtualBoards &boards, const std::vector<BoardOptions> &options)
{
    loadMemories(boards, options);
    for (const BoardOptions &each : options) {
        VirtualBoard &board = *boards.find(each.deviceNo);
        if (!each.eepromFile.empty() || !each.sramFile.empty())
            board.onPowerLoss([&board, each] { write(board, each); });
    }
}

void endMemories(VirtualBoards &boards, const std::vector<BoardOptions> &options)
{
    for (const BoardOptions &each : options) {
        if (each.eepromFile.empty() && each.sramFile.empty())
            continue;
        const std::shared_ptr<VirtualBoard> board = boards.hold(each.deviceNo);
        const auto lock = board->lock();
        try {
            board->unplug();
        } catch (const std::exception &error) {
            std::fprintf(stderr, "sorvane-sim: board %d: %s\n", each.deviceNo, error.what());
        }
    }
}

}  // namespace sim
