// A line of the language, read by a table of rows.
#ifndef SORVANE_SIM_LANGUAGE_READING_H
#define SORVANE_SIM_LANGUAGE_READING_H

#include "sim/language/grammar.h"

#include <functional>
#include <map>
#include <memory>

namespace sim
{

/// The words of a line from left to right. One that holds blanks where none can stand is a line of its own, so that a
/// shell's quotes may go around any part of a command.
class WordStream
{
public:
    explicit WordStream(TextWords words) : words_(std::move(words)) {}

    bool any() { return !peek().empty() || next_ < words_.size(); }
    /// The next word, which stays; empty when there is none.
    std::string peek();
    std::string take();
    bool takeIf(const std::string &word);
    /// The next word with its blanks.
    std::string takeWhole();
    /// How far it has come, and the words from there to here.
    std::size_t place() const { return next_; }
    std::string since(std::size_t place) const;
    /// Throws UsageError when words are left.
    void end();

private:
    TextWords words_;
    std::size_t next_ = 0;
};

struct ConditionReading;

/// What an argument was.
struct Value {
    std::string word;  ///< as it was written
    unsigned int number = 0;
    Nanoseconds time{};
    Bytes bytes{};
    const cabinet::Part *part = nullptr;  ///< once it is resolved, and where the cabinet has a name for it
    std::shared_ptr<ConditionReading> condition{};

    bool isName() const { return !word.empty() && (word[0] < '0' || word[0] > '9'); }
};

/// Whether on is an input's low level.
inline bool isActiveLow(const Value &input)
{
    return input.part && input.part->activeLow;
}

class Reading
{
public:
    /// Takes the words of one row and no more; throws UsageError that names what is allowed. `what` is a row of this
    /// table in messages: "command".
    static Reading parse(const SyntaxTable &table, const std::string &what, WordStream &words);

    const Syntax &row() const { return *row_; }
    /// The one that was chosen, empty where the row has none.
    const std::string &keyword() const { return keyword_; }
    bool is(const char *keyword) const { return keyword_ == keyword; }

    /// An argument by the name in its row, an option by its mark. It must not have been left out.
    const Value &operator[](const char *name) const { return values_.at(name).front(); }
    bool has(const char *name) const { return values_.count(name) > 0; }
    /// Of one that is repeated; none when it was left out.
    std::vector<Value> all(const char *name) const;
    unsigned int numberOr(const char *name, unsigned int otherwise) const;

    /// The bytes of a file that went along.
    void setContent(const char *name, Bytes content) { values_.at(name).front().bytes = std::move(content); }

    /// The board that the names lead to, `said` where there is none. Throws UsageError for a name that is unknown,
    /// ambiguous or on another board.
    std::optional<int> deviceIn(const cabinet::Cabinet &cabinet, std::optional<int> said) const;
    /// Puts numbers for names, and finds what the cabinet, which outlives this, has to tell about the parts.
    void resolve(const cabinet::Cabinet &cabinet, int device);

private:
    void takeArgument(const Argument &argument, const char *key, WordStream &words);
    void takeOptions(WordStream &words);
    void forEachPart(const std::function<void(const Argument &argument, const char *key)> &visit) const;

    const Syntax *row_ = nullptr;
    std::string keyword_;
    std::map<std::string, std::vector<Value>> values_;
};

/// A condition that was read.
struct ConditionReading {
    bool negated = false;  ///< by `not`
    Reading reading;
    std::string text;  ///< as it was said, for messages

    /// Takes its words and no more; throws UsageError that names what is allowed.
    static ConditionReading parse(WordStream &words);
};

}  // namespace sim

#endif
