#include "sim/language/board_options.h"

#include "sim/peripherals/make_peripheral.h"

#include <algorithm>
#include <cctype>

namespace sim
{

namespace
{

struct BoardOption {
    const char *name;
    bool numbered;  ///< a number belongs to the name: hopper5, serial0
    const char *usage;
    const char *help;
    void (*apply)(BoardOptions &board, const std::string &index, const std::string &value);
};

bool oneOf(const std::string &value, const std::string &what, const char *yes, const char *no)
{
    if (value != yes && value != no)
        refuse(value, what, {yes, no});
    return value == yes;
}

void setSpeed(BoardOptions &board, const std::string &, const std::string &value)
{
    board.highSpeed = oneOf(value, "speed", "high", "full");
}

void setNumber(BoardOptions &board, const std::string &, const std::string &value)
{
    board.number = static_cast<unsigned int>(numberFrom(value, "a board number", 0, 7));
}

void setEEPROM(BoardOptions &board, const std::string &, const std::string &value)
{
    const EEPROMChip *chip = findEEPROMChip(value);
    if (!chip) {
        TextWords names;
        for (const EEPROMChip &known : eepromChips)
            names.emplace_back(known.name);
        refuse(value, "EEPROM", names);
    }
    board.eeprom = chip->description;
}

void setFirmware(BoardOptions &board, const std::string &, const std::string &value)
{
    board.firmwareRunning = oneOf(value, "firmware", "running", "missing");
}

void setEEPROMFile(BoardOptions &board, const std::string &, const std::string &value)
{
    board.eepromFile = value;
}

void setSRAMFile(BoardOptions &board, const std::string &, const std::string &value)
{
    board.sramFile = value;
}

void setFirstLevel(BoardOptions &board, const std::string &index, const std::string &value)
{
    const auto input = static_cast<unsigned int>(numberFrom(index, "an input", 0, inputCount - 1));
    board.inputs[input] = oneOf(value, "input state", "on", "off");
}

void setHopper(BoardOptions &board, const std::string &index, const std::string &value)
{
    const auto input = static_cast<unsigned int>(numberFrom(index, "a hopper's input", 0, inputCount - 1));
    const TextWords parts = splitAt(value, '@');
    BoardOptions::HopperOptions &hopper = board.hoppers[input];
    hopper.stock = static_cast<unsigned int>(numberFrom(parts[0], "a stock of coins", 0, 65535));
    if (parts.size() > 2)
        throw UsageError("\"" + value + "\" names several outputs; allowed is COINS[@OUTPUT]");
    if (parts.size() == 2)
        hopper.motor = static_cast<unsigned int>(numberFrom(parts[1], "a hopper's motor output", 0, outputCount - 1));
}

void setSerial(BoardOptions &board, const std::string &index, const std::string &value)
{
    const auto port = static_cast<unsigned int>(numberFrom(index, "a serial port", 0, 1));
    const std::vector<std::string> &names = peripheralNames();
    if (std::find(names.begin(), names.end(), value) == names.end())
        refuse(value, "peripheral", names);
    board.peripherals[port] = value;
}

constexpr BoardOption options[] = {
    {"speed", false, "speed=full|high", "the USB speed (full)", setSpeed},
    {"number", false, "number=0..7", "the board number on inputs 24 to 26 (0)", setNumber},
    {"eeprom", false, "eeprom=24LC256", "the fitted chip, 24LC01 to 24LC512 (24LC256)", setEEPROM},
    {"firmware", false, "firmware=missing|running", "whether the firmware runs already (missing)", setFirmware},
    {"eeprom_file", false, "eeprom_file=FILE", "keeps the EEPROM's contents over runs", setEEPROMFile},
    {"sram_file", false, "sram_file=FILE", "keeps the SRAM's contents over runs", setSRAMFile},
    {"input", true, "input9=on", "an input that is on from the start", setFirstLevel},
    {"hopper", true, "hopper5=20[@37]", "a hopper on input 5 with 20 coins; its motor on output 37", setHopper},
    {"serial", true, "serial0=cctalk", "what hangs on serial port 0 or 1", setSerial},
};

TextWords optionNames()
{
    TextWords names;
    for (const BoardOption &option : options)
        names.push_back(option.name + std::string(option.numbered ? "N" : ""));
    return names;
}

const BoardOption &optionFor(const std::string &key)
{
    const std::size_t letters = key.find_first_of("0123456789");
    for (const BoardOption &option : options) {
        if (key.substr(0, letters) == option.name && (letters != std::string::npos) == option.numbered)
            return option;
    }
    refuse(key, "board option", optionNames());
}

Model modelFrom(const std::string &name)
{
    TextWords names;
    for (const Model model : everyModel) {
        if (name == nameOf(model))
            return model;
        names.emplace_back(nameOf(model));
    }
    refuse(name, "model", names);
}

BoardOptions boardFrom(const std::string &argument)
{
    const TextWords parts = splitAt(argument, ',');
    const std::size_t equals = parts[0].find('=');
    if (equals == std::string::npos)
        throw UsageError("allowed is N=MODEL[,option=value...], N from 0 to 15, MODEL R20, R20s or R35");
    BoardOptions board;
    board.deviceNo = static_cast<int>(numberFrom(parts[0].substr(0, equals), "a device number", 0, deviceCount - 1));
    board.model = modelFrom(parts[0].substr(equals + 1));
    TextWords seen;
    for (auto part = parts.begin() + 1; part != parts.end(); ++part) {
        const std::size_t at = part->find('=');
        const std::string key = part->substr(0, at);
        const BoardOption &option = optionFor(key);
        const std::string value = at == std::string::npos ? "" : part->substr(at + 1);
        if (value.empty())
            throw UsageError("board option " + key + " has no value; allowed: " + option.usage);
        const std::string index = key.substr(std::string(option.name).size());
        option.apply(board, index, value);
        // hopper05 is hopper5.
        const std::string meant = option.name + (option.numbered ? std::to_string(std::stoul(index)) : "");
        if (std::find(seen.begin(), seen.end(), meant) != seen.end())
            throw UsageError("board option " + key + " stands there twice; allowed is once");
        seen.push_back(meant);
    }
    return board;
}

}  // namespace

std::vector<BoardOptions> boardsFrom(const TextWords &arguments)
{
    std::vector<BoardOptions> boards;
    for (const std::string &argument : arguments) {
        try {
            boards.push_back(boardFrom(argument));
        } catch (const UsageError &error) {
            throw UsageError("--board " + argument + ": " + error.what());
        }
        const auto sameNumber = [&boards](const BoardOptions &board) {
            return board.deviceNo == boards.back().deviceNo;
        };
        if (std::count_if(boards.begin(), boards.end(), sameNumber) > 1)
            throw UsageError("--board " + argument + ": there is a board " + std::to_string(boards.back().deviceNo) +
                             " already; allowed is one for each number");
    }
    return boards;
}

void plugBoards(VirtualBoards &boards, const std::vector<BoardOptions> &options)
{
    for (const BoardOptions &wanted : options) {
        VirtualBoard &board = boards.plug(wanted.deviceNo, wanted.model);
        if (wanted.highSpeed.value_or(false))
            board.highSpeed();
        if (wanted.number)
            board.boardNumber(*wanted.number);
        if (wanted.eeprom)
            board.eeprom(*wanted.eeprom);
        if (wanted.firmwareRunning.value_or(false))
            board.firmwareRunning();
        for (const auto &[input, level] : wanted.inputs)
            board.inputs().set(input, level);
        for (const auto &[input, hopper] : wanted.hoppers)
            board.hopper(input, hopper.stock, hopper.motor);
        for (const auto &[port, name] : wanted.peripherals)
            board.serialPeripheral(port, makePeripheral(name));
    }
}

std::string boardOptionsHelp()
{
    std::string help = "N=MODEL[,option=value...]: N 0 to 15; MODEL R20, R20s or R35; options:\n";
    for (const BoardOption &option : options) {
        const std::string usage = option.usage;
        help += "  " + usage + std::string(26 - usage.size(), ' ') + option.help + "\n";
    }
    return help + "  peripherals: " + join(peripheralNames(), ", ");
}

}  // namespace sim
