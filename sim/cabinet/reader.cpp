// From the text of a cabinet file to its boards.
#include "api/sorvaneusb_types.h"
#include "sim/cabinet/cabinet.h"
#include "sim/cabinet/checks.h"
#include "sim/cabinet/fields.h"
#include "sim/peripherals/peripheral_names.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace cabinet
{

namespace
{

constexpr std::size_t largestFile = 1 << 20;
constexpr unsigned int formatVersion = 1;
constexpr unsigned int lastDevice = 15;
constexpr unsigned int lastBoardNumber = 7;
// The inputs that have a counter and a hopper's state on the board.
constexpr unsigned int lastCountedInput = 23;
constexpr unsigned int firstOfBoardNumber = 24;
constexpr unsigned int lastOfBoardNumber = 26;
constexpr unsigned int lastReel = 2;
constexpr unsigned int lastSwitch = 7;
constexpr unsigned int lastCcTalkCoin = 16;
constexpr unsigned int mostCoins = 65535;
constexpr unsigned int lastAddress = 65535;
constexpr const char *colours[] = {"white", "red", "orange", "yellow", "green", "blue", "purple", "pink"};

bool needNumber(Fields &fields, const char *key, unsigned int least, unsigned int most, unsigned int &value)
{
    fields.need(key, {std::to_string(least) + " to " + std::to_string(most)});
    return fields.number(key, least, most, value);
}

void readInput(Fields &fields, Part &part)
{
    needNumber(fields, "number", 0, usbInput32, part.number);
    fields.choice("active", "low", "high", part.activeLow);
    if (part.activeLow && part.number >= firstOfBoardNumber && part.number <= lastOfBoardNumber)
        fields.mistake("it is a bit of the board number; allowed is active = \"high\" on inputs 24 to 26");
}

bool isColour(const std::string &text)
{
    const bool named = std::find(std::begin(colours), std::end(colours), text) != std::end(colours);
    return named || (text.size() == 7 && text[0] == '#' &&
                     text.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos);
}

void readOutput(Fields &fields, Part &part)
{
    needNumber(fields, "number", 0, usbOutput37, part.number);
    if (fields.text("colour", part.colour) && !isColour(part.colour)) {
        std::vector<std::string> allowed(std::begin(colours), std::end(colours));
        allowed.emplace_back("#RRGGBB");
        fields.wrong("colour", allowed);
    }
}

void readCoin(Fields &fields, Part &part)
{
    const bool onInput = fields.take("input") != nullptr;
    const bool atAcceptor = fields.take("cctalk") != nullptr;
    if (onInput == atAcceptor) {
        fields.mistake("it comes one way: allowed is input = 0 to 23, or cctalk = 1 to 16");
        return;
    }
    part.kind = onInput ? Kind::Coin : Kind::CcTalkCoin;
    if (onInput)
        fields.number("input", 0, lastCountedInput, part.number);
    else
        fields.number("cctalk", 1, lastCcTalkCoin, part.number);
}

void readHopper(Fields &fields, Part &part)
{
    needNumber(fields, "input", 0, lastCountedInput, part.number);
    unsigned int output = 0;
    if (fields.number("output", 0, usbOutput37, output))
        part.output = output;
    fields.number("stock", 0, mostCoins, part.stock);
}

void readReel(Fields &fields, Part &part)
{
    needNumber(fields, "number", 0, lastReel, part.number);
}

void readMeter(Fields &fields, Part &part)
{
    needNumber(fields, "address", 0, lastAddress, part.number);
    fields.number("bytes", 1, 8, part.bytes);
    fields.choice("order", "big", "little", part.bigEndian);
}

void readSwitch(Fields &fields, Part &part)
{
    needNumber(fields, "number", 0, lastSwitch, part.number);
}

struct Section {
    const char *key;
    Kind kind;
    const char *numberKey;  ///< what a part that is only a number tells
    void (*read)(Fields &fields, Part &part);
};

constexpr Section sections[] = {
    {"inputs", Kind::Input, "number", readInput},     {"outputs", Kind::Output, "number", readOutput},
    {"coins", Kind::Coin, "input", readCoin},         {"hoppers", Kind::Hopper, "input", readHopper},
    {"reels", Kind::Reel, "number", readReel},        {"meters", Kind::Meter, "address", readMeter},
    {"switches", Kind::Switch, "number", readSwitch},
};

void readSection(const toml::node &node, const Section &section, Board &board, Mistakes &mistakes)
{
    const toml::table *table = node.as_table();
    if (!table) {
        mistakes.add(lineOf(node.source()), std::string(section.key) + " is no table; allowed is name = number, or "
                                                                       "name = { ... }, for each part");
        return;
    }
    for (const auto &[key, value] : *table) {
        Part part;
        part.kind = section.kind;
        part.name = key.str();
        part.line = lineOf(key.source());
        const std::size_t before = mistakes.count();
        Fields fields(value, section.numberKey, part.line, titleOf(part), mistakes);
        if (const std::string allowed = whatIsAName(part.name); !allowed.empty())
            fields.mistake("it is no name for a part; allowed: " + allowed);
        section.read(fields, part);
        fields.end();
        if (mistakes.count() == before)
            board.parts.push_back(part);
    }
}

void readSerialPort(Fields &boardFields, unsigned int number, Board &board, Mistakes &mistakes)
{
    Part part;
    part.kind = Kind::Serial;
    part.number = number;
    const std::string key = titleOf(part);
    const toml::node *node = boardFields.take(key);
    if (!node)
        return;
    part.line = lineOf(node->source());
    const std::size_t before = mistakes.count();
    Fields fields(*node, "peripheral", part.line, key, mistakes);
    fields.word("peripheral", sim::peripheralNames(), part.peripheral);
    fields.need("peripheral", sim::peripheralNames());
    fields.name("name", part.name);
    fields.end();
    if (mistakes.count() == before)
        board.parts.push_back(part);
}

// It goes on as part of a --board option, which has commas between its values.
void readFileName(Fields &fields, const char *key, std::string &value)
{
    std::string file;
    if (!fields.text(key, file))
        return;
    if (file.empty() || file.find_first_of(",\"\\") != std::string::npos)
        fields.wrong(key, {"a file's name without , \" and \\"});
    else
        value = file;
}

// The keys that stand for themselves.
void readSettings(Fields &fields, Board &board)
{
    fields.name("name", board.name);
    unsigned int device = 0;
    if (needNumber(fields, "device", 0, lastDevice, device))
        fields.setWhat("board " + std::to_string(device));
    if (!board.name.empty())
        fields.setWhat("board \"" + board.name + "\"");
    board.device = static_cast<int>(device);

    std::vector<std::string> models;
    for (const sim::Model model : sim::everyModel)
        models.emplace_back(sim::nameOf(model));
    std::string chosen;
    if (fields.word("model", models, chosen)) {
        for (const sim::Model model : sim::everyModel) {
            if (chosen == sim::nameOf(model))
                board.model = model;
        }
    }
    fields.need("model", models);
    fields.choice("speed", "high", "full", board.highSpeed);
    fields.number("number", 0, lastBoardNumber, board.number);

    std::vector<std::string> chips;
    for (const sim::EEPROMChip &chip : sim::eepromChips)
        chips.emplace_back(chip.name);
    if (fields.word("eeprom", chips, chosen))
        board.eeprom = sim::findEEPROMChip(chosen);
    fields.choice("firmware", "running", "missing", board.firmwareRunning);
    readFileName(fields, "eeprom_file", board.eepromFile);
    readFileName(fields, "sram_file", board.sramFile);
}

void readBoard(const toml::table &table, std::vector<Board> &boards, Mistakes &mistakes)
{
    Board board;
    board.line = lineOf(table.source());
    const std::size_t before = mistakes.count();
    Fields fields(table, board.line, "board", mistakes);
    readSettings(fields, board);
    const bool sound = mistakes.count() == before;
    for (const Section &section : sections) {
        if (const toml::node *node = fields.take(section.key))
            readSection(*node, section, board, mistakes);
    }
    readSerialPort(fields, 0, board, mistakes);
    readSerialPort(fields, 1, board, mistakes);
    fields.end();
    if (!sound)
        return;
    checkParts(board, mistakes);
    boards.push_back(std::move(board));
}

void readBoards(Fields &fields, std::vector<Board> &boards, Mistakes &mistakes)
{
    const toml::node *node = fields.take("board");
    const toml::array *list = node ? node->as_array() : nullptr;
    if (!list || list->empty()) {
        mistakes.add(node ? lineOf(node->source()) : fields.line(), "there is no board; allowed is [[board]] for each");
        return;
    }
    for (const toml::node &each : *list) {
        if (const toml::table *table = each.as_table())
            readBoard(*table, boards, mistakes);
        else
            mistakes.add(lineOf(each.source()), "a board is no table; allowed is [[board]] for each");
    }
    checkBoards(boards, mistakes);
}

// Another version may mean something else by the same keys: nothing more is said about them.
void checkVersion(Fields &fields, Mistakes &mistakes)
{
    const std::string known = std::to_string(formatVersion);
    const toml::node *node = fields.take("version");
    if (!node) {
        fields.mistake("there is no version; allowed: version = " + known);
        return;
    }
    if (node->is_integer() && node->ref<std::int64_t>() == formatVersion)
        return;
    fields.wrong("version", {known});
    mistakes.throwIfAny();
}

}  // namespace

Cabinet Cabinet::read(const std::string &file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw Error(file + ": " + std::strerror(errno));
    std::string text(largestFile + 1, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    if (stream.bad() || text.size() > largestFile)
        throw Error(file + ": it cannot be read; allowed is a cabinet file of up to 1 MiB");
    return parse(text, file);
}

Cabinet Cabinet::parse(const std::string &text, const std::string &file)
{
    Cabinet cabinet;
    Mistakes mistakes(file);
    toml::table table;
    try {
        table = toml::parse(text, file);
    } catch (const toml::parse_error &error) {
        mistakes.add(lineOf(error.source()), printable(std::string(error.description()), 200));
        mistakes.throwIfAny();
    }
    Fields fields(table, 1, "", mistakes);
    checkVersion(fields, mistakes);
    fields.text("name", cabinet.name_);
    readBoards(fields, cabinet.boards_, mistakes);
    fields.end();
    mistakes.throwIfAny();
    return cabinet;
}

}  // namespace cabinet
