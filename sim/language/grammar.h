// How a line of the language looks: each command and each condition is one row or several, and parsing, help, the docs'
// tables and other programs' checks follow from the rows.
//
//     NAME [SUBJECT] [KEYWORD] [ARGUMENT...] [OPTION...]
//     hopper main_hopper stock 20
//
// Rows of one name have the same subject; their keywords tell them apart.
#ifndef SORVANE_SIM_LANGUAGE_GRAMMAR_H
#define SORVANE_SIM_LANGUAGE_GRAMMAR_H

#include "sim/cabinet/cabinet.h"
#include "sim/language/words.h"

#include <map>
#include <optional>

namespace sim
{

/// What one argument may be. Reading (reading.h) knows how each is read.
enum class Sort {
    Number,     ///< least to most, decimal or hexadecimal behind 0x
    Part,       ///< of the kinds: a number from least to most, a name, or BOARD.name
    Time,       ///< 1.5s, 20ms, 300us
    Choice,     ///< one of the words
    Byte,       ///< two hexadecimal digits
    Operation,  ///< the name of an operation of the library
    Condition,  ///< a row of conditionSyntax(), perhaps behind `not`
    Text,       ///< with \\n, \\r, \\t, \\\\ and \\xHH; not empty
    Content,    ///< a file: whoever speaks opens it, and its bytes go along
    NewFile     ///< a file that whoever speaks writes
};

struct Argument {
    const char *name;  ///< as a usage shows it: "COUNT"
    Sort sort;
    const char *what;  ///< in messages: "a number of pulses"
    unsigned long least = 0;
    unsigned long most = 0;
    std::vector<cabinet::Kind> kinds{};
    bool optional = false;
    bool repeated = false;  ///< as many as come, at least one
    std::vector<const char *> choices{};
};

/// Stands behind the arguments, in any order, each once. Without an argument its mark says it all.
struct Option {
    const char *mark;
    std::optional<Argument> argument;
    const char *help;
};

struct Syntax {
    const char *name;
    std::optional<Argument> subject{};
    std::vector<const char *> keywords{};  ///< one of them has to stand there; none: no keyword
    std::vector<Argument> arguments{};
    std::vector<Option> options{};
    const char *help;
};

using SyntaxTable = std::vector<const Syntax *>;

/// What can be waited for.
const SyntaxTable &conditionSyntax();

/// ` [COUNT]`, empty without arguments.
std::string argumentsOf(const Syntax &row);
/// `input PART pulse [COUNT]`.
std::string usageOf(const Syntax &row);
/// Of every row of this name: `input PART on|off|pulse [COUNT]`.
std::string usageOf(const SyntaxTable &table, const std::string &name);

/// The names, each once, in the table's order.
TextWords namesIn(const SyntaxTable &table);
/// Every word that has a meaning of its own in these rows and might be a part's name, which it must not be.
TextWords wordsIn(const SyntaxTable &table);

/// The rows for another program: {"commands":[...]}.
std::string jsonOf(const std::map<std::string, SyntaxTable> &tables);

}  // namespace sim

#endif
