// From a word of a command to a part, and from a number to its name.
#include "sim/cabinet/cabinet.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <set>

namespace cabinet
{

namespace
{

std::string listed(const std::set<std::string> &texts)
{
    std::string list;
    for (const std::string &text : texts)
        list += (list.empty() ? "" : ", ") + text;
    return list;
}

unsigned int numberFrom(const std::string &word)
{
    const bool hexadecimal = word.rfind("0x", 0) == 0 || word.rfind("0X", 0) == 0;
    char *end = nullptr;
    errno = 0;
    const unsigned long long number = std::strtoull(word.c_str(), &end, hexadecimal ? 16 : 10);
    if (*end != '\0' || errno != 0 || number > std::numeric_limits<unsigned int>::max())
        throw Error("\"" + word + "\" is neither a number nor a name; names begin with a letter");
    return static_cast<unsigned int>(number);
}

struct Candidate {
    const Board *board;
    const Part *part;

    std::string fullName() const { return (board->name.empty() ? "" : board->name + ".") + part->name; }
    bool isSamePlaceAs(const Candidate &other) const
    {
        return board == other.board && part->number == other.part->number;
    }
};

// Every named part of these kinds on one board, or on each.
std::vector<Candidate> candidates(const std::vector<Board> &boards, const std::vector<Kind> &kinds,
                                  std::optional<int> device)
{
    std::vector<Candidate> found;
    for (const Board &board : boards) {
        if (device && *device != board.device)
            continue;
        for (const Part &part : board.parts) {
            if (!part.name.empty() && std::find(kinds.begin(), kinds.end(), part.kind) != kinds.end())
                found.push_back({&board, &part});
        }
    }
    return found;
}

std::string called(const std::vector<Kind> &kinds)
{
    std::set<std::string> words;
    for (const Kind kind : kinds)
        words.insert(wordFor(kind));
    std::string text;
    for (const std::string &word : words)
        text += (text.empty() ? "" : " or ") + word;
    return text;
}

[[noreturn]] void refuseUnknown(const std::string &word, const std::string &kind, const std::vector<Candidate> &all)
{
    std::set<std::string> names;
    for (const Candidate &each : all)
        names.insert(each.part->name);
    throw Error("there is no " + kind + " \"" + word + "\"; allowed: " +
                (names.empty() ? "a number, since none has a name here" : "a number, " + listed(names)));
}

[[noreturn]] void refuseAmbiguous(const std::string &word, const std::string &kind, const std::vector<Candidate> &all)
{
    const auto sameBoard = [&all](const Candidate &each) { return each.board == all[0].board; };
    if (!std::all_of(all.begin(), all.end(), sameBoard)) {
        std::set<std::string> names;
        for (const Candidate &each : all)
            names.insert(each.fullName());
        throw Error("which " + kind + " \"" + word + "\"? Allowed: " + listed(names));
    }
    std::set<std::string> numbers;
    for (const Candidate &each : all)
        numbers.insert(std::to_string(each.part->number) + " (" + wordFor(each.part->kind) + ")");
    throw Error("which \"" + word + "\"? Allowed are the numbers " + listed(numbers));
}

// The board that the word names in front of its dot, without it.
int takeBoard(std::string &word, std::size_t dot, const Cabinet &cabinet, std::optional<int> said)
{
    const std::string name = word.substr(0, dot);
    const std::optional<int> named = cabinet.deviceNamed(name);
    if (!named) {
        std::set<std::string> names;
        for (const Board &each : cabinet.boards()) {
            if (!each.name.empty())
                names.insert(each.name);
        }
        throw Error("there is no board \"" + name +
                    "\"; allowed: " + (names.empty() ? "none, since no board has a name" : listed(names)));
    }
    if (said && *said != *named)
        throw Error("\"" + word + "\" is on board " + std::to_string(*named) + " and not on board " +
                    std::to_string(*said));
    word.erase(0, dot + 1);
    return *named;
}

}  // namespace

Place Cabinet::find(const std::vector<Kind> &kinds, const std::string &word, std::optional<int> device) const
{
    if (!word.empty() && word[0] >= '0' && word[0] <= '9') {
        const unsigned int number = numberFrom(word);
        const Part *named = nullptr;
        for (auto kind = kinds.begin(); kind != kinds.end() && device && !named; ++kind)
            named = part(*device, *kind, number);
        return {device, number, named};
    }
    std::string name = word;
    if (const std::size_t dot = word.find('.'); dot != std::string::npos)
        device = takeBoard(name, dot, *this, device);
    const std::vector<Candidate> all = candidates(boards_, kinds, device);
    std::vector<Candidate> fitting;
    std::copy_if(all.begin(), all.end(), std::back_inserter(fitting),
                 [&name](const Candidate &each) { return each.part->name == name; });
    if (fitting.empty())
        refuseUnknown(word, called(kinds), all);
    const auto samePlace = [&fitting](const Candidate &each) { return each.isSamePlaceAs(fitting[0]); };
    if (!std::all_of(fitting.begin(), fitting.end(), samePlace))
        refuseAmbiguous(word, called(kinds), fitting);
    return {fitting[0].board->device, fitting[0].part->number, fitting[0].part};
}

const Part *Cabinet::part(int device, Kind kind, unsigned int number) const
{
    const Board *on = board(device);
    if (!on)
        return nullptr;
    const auto found = std::find_if(on->parts.begin(), on->parts.end(), [kind, number](const Part &part) {
        return part.kind == kind && part.number == number && !part.name.empty();
    });
    return found == on->parts.end() ? nullptr : &*found;
}

}  // namespace cabinet
