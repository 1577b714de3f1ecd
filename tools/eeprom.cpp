// The EEPROM to a file and back, and which one is fitted. It is reached through the library, which bounds the addresses
// by the chip that is configured: 8 up to, but not including, the highest one.
#include "sim/core/eeprom_chips.h"
#include "tools/failure.h"
#include "tools/files.h"
#include "tools/gate.h"
#include "tools/opening.h"
#include "tools/print.h"
#include "tools/progress.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

constexpr unsigned int firstAddress = 8;
constexpr std::size_t chunkBytes = 512;

struct EEPROMOptions {
    std::string board, action, file, chip;
    Consent consent;
    Opening opening;
};

const char *chipName(unsigned int highestAddress)
{
    for (const sim::EEPROMChip &chip : sim::eepromChips) {
        if (chip.description.maxAddress == highestAddress)
            return chip.name;
    }
    return "unknown";
}

/// Moves the bytes of a string in chunks, so that they can be shown and stopped.
template <class Transfer>
void inChunks(Opening &opening, OpenedBoard &opened, std::string &bytes, const std::string &what, Transfer transfer)
{
    Progress progress(bytes.size());
    auto *data = reinterpret_cast<unsigned char *>(bytes.data());
    for (std::size_t done = 0; done < bytes.size(); progress.at(done)) {
        if (opening.signals().arrived())
            throw Refusal(what + " was stopped after " + std::to_string(done) + " of " + std::to_string(bytes.size()) +
                          " bytes");
        const auto length = static_cast<unsigned int>(std::min(chunkBytes, bytes.size() - done));
        check(opened, transfer(static_cast<unsigned int>(firstAddress + done), data + done, length),
              what + " after " + std::to_string(done) + " of " + std::to_string(bytes.size()) + " bytes");
        done += length;
    }
}

std::string readAll(EEPROMOptions &options, OpenedBoard &opened, std::size_t length)
{
    std::string bytes(length, '\0');
    inChunks(options.opening, opened, bytes, "reading the EEPROM",
             [&opened](unsigned int address, unsigned char *data, unsigned int count) {
                 return opened.readEEPROM(address, data, count);
             });
    return bytes;
}

/// Which chip it is: the one that was named, or the one that is configured.
unsigned int reachableBytes(EEPROMOptions &options, OpenedBoard &opened)
{
    if (!options.chip.empty())
        check(opened, opened.configureEEPROM(sim::findEEPROMChip(options.chip)->description), "configuring the EEPROM");
    const unsigned int highest = opened.highestEEPROMAddress();
    if (highest <= firstAddress)
        throw Refusal("no EEPROM is configured", "Try: sorvane eeprom ... detect, or --chip");
    return highest - firstAddress;
}

void needLength(const std::string &file, std::size_t length, unsigned int reachable)
{
    if (length == reachable)
        return;
    throw Refusal(file + " has " + std::to_string(length) + " bytes, but of a " + chipName(reachable + firstAddress) +
                      ", " + std::to_string(reachable) + " can be reached",
                  "Try: --chip NAME where the chip is another; a blank one is taken for a smaller one of its family");
}

void compare(EEPROMOptions &options, OpenedBoard &opened, const std::string &wanted)
{
    const std::string difference = firstDifference(wanted, readAll(options, opened, wanted.size()), firstAddress);
    if (!difference.empty())
        throw Refusal(options.file + " and the EEPROM differ, first " + difference);
}

void detect(EEPROMOptions &options, Board &board, OpenedBoard &opened, const Settings &settings)
{
    R20EEPROM found = {};
    check(opened, opened.checkEEPROM(found), "finding out the EEPROM of " + board.title());
    check(opened, opened.configureEEPROM(found), "configuring the EEPROM of " + board.title());
    if (settings.json)
        print({{"board", board.device()},
               {"action", options.action},
               {"chip", chipName(found.maxAddress)},
               {"highest_address", found.maxAddress}});
    else
        say("EEPROM of %s: %s, addresses 0 to %u; the board is configured for it\n"
            "(a blank chip, or one that repeats its first 100 bytes, is taken for a smaller one)\n",
            board.title().c_str(), chipName(found.maxAddress), found.maxAddress);
}

/// What is to be written or compared. Looked at before anything is configured.
std::string wantedBytes(const EEPROMOptions &options)
{
    if (options.action != "restore" && options.action != "verify")
        return "";
    std::string bytes = readFile(options.file);
    if (!options.chip.empty())
        needLength(options.file, bytes.size(),
                   sim::findEEPROMChip(options.chip)->description.maxAddress - firstAddress);
    return bytes;
}

/// Returns the number of bytes.
std::size_t transfer(EEPROMOptions &options, OpenedBoard &opened, std::string bytes)
{
    const unsigned int reachable = reachableBytes(options, opened);
    if (options.action == "dump") {
        writeFile(options.file, readAll(options, opened, reachable));
        return reachable;
    }
    needLength(options.file, bytes.size(), reachable);
    if (options.action == "restore")
        inChunks(options.opening, opened, bytes, "writing the EEPROM",
                 [&opened](unsigned int address, unsigned char *data, unsigned int count) {
                     return opened.writeEEPROM(address, data, count);
                 });
    compare(options, opened, bytes);
    return reachable;
}

std::string actionOf(const EEPROMOptions &options)
{
    const std::string chip = options.chip.empty() ? "" : " and configure the board for a " + options.chip;
    if (options.action == "restore")
        return "write the EEPROM" + chip;
    return options.action == "detect" ? "find out which EEPROM is fitted and configure the board for it"
                                      : "read the EEPROM" + chip;
}

int eeprom(EEPROMOptions &options, const Settings &settings)
{
    if (options.file.empty() != (options.action == "detect"))
        throw UsageError(options.action + (options.file.empty() ? " needs a FILE" : " takes no FILE"));
    Board board(settings, options.board);
    const std::string wanted = wantedBytes(options);
    if (options.action == "restore" || options.action == "detect" || !options.chip.empty())
        options.consent.obtain(board, actionOf(options));
    // Whoever asks for that is asked by it already whether the EEPROM may be configured.
    options.opening.allowed |= options.action == "detect" || !options.chip.empty();
    OpenedBoard &opened = options.opening.open(board);
    if (options.action == "detect") {
        detect(options, board, opened, settings);
        return 0;
    }
    const std::size_t bytes = transfer(options, opened, wanted);
    if (settings.json)
        print({{"board", board.device()},
               {"action", options.action},
               {"address", firstAddress},
               {"bytes", bytes},
               {"chip", chipName(static_cast<unsigned int>(bytes) + firstAddress)},
               {"file", options.file}});
    else
        say("%s: %zu bytes from address %u of a %s %s\n", options.file.c_str(), bytes, firstAddress,
            chipName(static_cast<unsigned int>(bytes) + firstAddress),
            options.action == "dump"     ? "read"
            : options.action == "verify" ? "are alike"
                                         : "written, and read back alike");
    return 0;
}

}  // namespace

Command::Action declareEeprom(CLI::App &command)
{
    auto options = std::make_shared<EEPROMOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("ACTION", options->action, "dump, restore, verify or detect")
        ->required()
        ->check(CLI::IsMember({"dump", "restore", "verify", "detect"}));
    command.add_option("FILE", options->file, "the bytes from address 8 on, as they are");
    std::vector<std::string> chips;
    for (const sim::EEPROMChip &chip : sim::eepromChips)
        chips.emplace_back(chip.name);
    command.add_option("--chip", options->chip, "configures the board for this chip before, as 24LC256")
        ->check(CLI::IsMember(chips));
    options->consent.addTo(command);
    options->opening.addTo(command);
    return [options](const Settings &settings) { return eeprom(*options, settings); };
}

}  // namespace tools
