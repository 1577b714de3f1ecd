// What commands take from a board's memories and put there.
#include "sim/language/actions.h"

namespace sim
{

namespace
{

template <class Memory>
Outcome dump(const Memory &memory, std::size_t from, std::size_t size)
{
    Bytes bytes(size);
    for (std::size_t at = 0; at < size; ++at)
        bytes[at] = memory.at(from + at);
    return {.data = "{\"bytes\":\"" + hexOf(bytes) + "\"}"};
}

template <class Memory>
void load(Memory &memory, std::size_t from, std::size_t size, const Value &file)
{
    if (file.bytes.size() != size)
        throw UsageError("\"" + file.word + "\" has " + std::to_string(file.bytes.size()) + " bytes; allowed are " +
                         std::to_string(size) + ", as in the board");
    memory.write(from, file.bytes);
}

struct Range {
    std::size_t from;
    std::size_t size;
};

Range rangeIn(const SRAM &sram, const Reading &reading)
{
    if (!reading.has("--page"))
        return {0, sram.size()};
    const unsigned int page = reading["--page"].number;
    if ((page + 1) * sramPageSize > sram.size())
        throw UsageError("there is no page " + std::to_string(page) + "; allowed are 0 to " +
                         std::to_string(sram.size() / sramPageSize - 1));
    return {page * sramPageSize, sramPageSize};
}

}  // namespace

Outcome dumpEEPROM(VirtualBoard &board, const Reading &)
{
    return dump(board.eeprom(), 0, board.eeprom().size());
}

void loadEEPROM(VirtualBoard &board, const Reading &reading)
{
    load(board.eeprom(), 0, board.eeprom().size(), reading["FILE"]);
}

Outcome dumpSRAM(VirtualBoard &board, const Reading &reading)
{
    const Range range = rangeIn(board.sram(), reading);
    return dump(board.sram(), range.from, range.size);
}

void loadSRAM(VirtualBoard &board, const Reading &reading)
{
    const Range range = rangeIn(board.sram(), reading);
    load(board.sram(), range.from, range.size, reading["FILE"]);
}

}  // namespace sim
