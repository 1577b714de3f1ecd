#include "sim/cabinet/cabinet.h"

#include "sim/cabinet/grammar_words.h"
#include "sim/cabinet/reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace cabinet
{

namespace
{

constexpr std::size_t largestFile = 1 << 20;

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

}  // namespace

const char *wordFor(Kind kind)
{
    switch (kind) {
    case Kind::Input:
        return "input";
    case Kind::Output:
        return "output";
    case Kind::Coin:
    case Kind::CcTalkCoin:
        return "coin";
    case Kind::Hopper:
        return "hopper";
    case Kind::Reel:
        return "reel";
    case Kind::Meter:
        return "meter";
    case Kind::Switch:
        return "switch";
    case Kind::Serial:
        break;
    }
    return "serial";
}

bool isName(const std::string &word)
{
    const auto fits = [](char c) { return isLetter(c) || isDigit(c) || c == '_' || c == '-'; };
    return !word.empty() && isLetter(word[0]) && std::all_of(word.begin(), word.end(), fits) && !isGrammarWord(word);
}

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
    readCabinet(text, file, cabinet.name_, cabinet.boards_);
    return cabinet;
}

const Board *Cabinet::board(int device) const
{
    const auto found =
        std::find_if(boards_.begin(), boards_.end(), [device](const Board &board) { return board.device == device; });
    return found == boards_.end() ? nullptr : &*found;
}

std::optional<int> Cabinet::deviceNamed(const std::string &board) const
{
    for (const Board &each : boards_) {
        if (!board.empty() && each.name == board)
            return each.device;
    }
    return std::nullopt;
}

}  // namespace cabinet
