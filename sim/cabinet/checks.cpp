#include "sim/cabinet/checks.h"

#include <algorithm>

namespace cabinet
{

namespace
{

std::string lineText(int line)
{
    return " (line " + std::to_string(line) + ")";
}

void checkNumbers(const Board &board, Mistakes &mistakes)
{
    for (auto part = board.parts.begin(); part != board.parts.end(); ++part) {
        const auto before = std::find_if(board.parts.begin(), part, [part](const Part &other) {
            return other.kind == part->kind && other.number == part->number;
        });
        if (before != part && part->kind != Kind::Meter)
            mistakes.add(part->line, titleOf(*part) + ": number " + std::to_string(part->number) + " is " +
                                         titleOf(*before) + lineText(before->line) + "; allowed is one name for each");
    }
}

void checkMeters(const Board &board, Mistakes &mistakes)
{
    const unsigned int size = board.eeprom->description.maxAddress + 1U;
    const auto end = [](const Part &meter) { return meter.number + meter.bytes; };
    for (auto part = board.parts.begin(); part != board.parts.end(); ++part) {
        if (part->kind != Kind::Meter)
            continue;
        if (end(*part) > size)
            mistakes.add(part->line, titleOf(*part) + ": it ends behind the EEPROM; allowed are addresses 0 to " +
                                         std::to_string(size - 1) + " on a " + board.eeprom->name);
        const auto overlapped = std::find_if(board.parts.begin(), part, [part, &end](const Part &other) {
            return other.kind == Kind::Meter && other.number < end(*part) && part->number < end(other);
        });
        if (overlapped != part)
            mistakes.add(part->line, titleOf(*part) + ": it lies on bytes of " + titleOf(*overlapped) +
                                         lineText(overlapped->line) + "; allowed are bytes of its own");
    }
}

void checkSerialPorts(const Board &board, Mistakes &mistakes)
{
    const auto fitted = [&board](const std::string &peripheral) {
        return std::any_of(board.parts.begin(), board.parts.end(),
                           [&peripheral](const Part &part) { return part.peripheral == peripheral; });
    };
    std::vector<const Part *> ports;
    for (const Part &part : board.parts) {
        if (part.kind == Kind::CcTalkCoin && !fitted("cctalk"))
            mistakes.add(part.line, titleOf(part) + ": there is no acceptor for it; allowed with serial0 or serial1 = "
                                                    "\"cctalk\"");
        if (part.kind != Kind::Serial)
            continue;
        if (part.peripheral == "sas" && board.model == sim::Model::R20)
            mistakes.add(part.line, titleOf(part) + ": an R20 has no SAS; allowed on R20s and R35");
        ports.push_back(&part);
    }
    if (ports.size() == 2 && !ports[0]->name.empty() && ports[0]->name == ports[1]->name)
        mistakes.add(ports[1]->line, titleOf(*ports[1]) + ": the name \"" + ports[1]->name + "\" is " +
                                         titleOf(*ports[0]) + lineText(ports[0]->line) + "; allowed is one for each");
}

}  // namespace

std::string titleOf(const Part &part)
{
    if (part.kind == Kind::Serial)
        return "serial" + std::to_string(part.number);
    return std::string(wordFor(part.kind)) + " \"" + printable(part.name) + "\"";
}

void checkParts(const Board &board, Mistakes &mistakes)
{
    checkNumbers(board, mistakes);
    checkMeters(board, mistakes);
    checkSerialPorts(board, mistakes);
}

void checkBoards(const std::vector<Board> &boards, Mistakes &mistakes)
{
    for (auto board = boards.begin(); board != boards.end(); ++board) {
        if (boards.size() > 1 && board->name.empty())
            mistakes.add(board->line, "a board has no name; each of several needs one");
        const auto before = [&](const auto &same) { return std::find_if(boards.begin(), board, same); };
        const auto named = before([&](const Board &other) { return !other.name.empty() && other.name == board->name; });
        if (named != board)
            mistakes.add(board->line, "board \"" + board->name + "\": there is one already" + lineText(named->line) +
                                          "; allowed is a name for each");
        const auto numbered = before([&](const Board &other) { return other.device == board->device; });
        if (numbered != board)
            mistakes.add(board->line, "device " + std::to_string(board->device) + " is another board" +
                                          lineText(numbered->line) + "; allowed is one board for each");
    }
}

}  // namespace cabinet
