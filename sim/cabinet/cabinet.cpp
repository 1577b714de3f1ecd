#include "sim/cabinet/cabinet.h"

#include "sim/cabinet/grammar_words.h"

#include <algorithm>

namespace cabinet
{

namespace
{

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
