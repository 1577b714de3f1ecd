// The keys of one table of a cabinet file, and the mistakes that are found in them.
#ifndef SORVANE_SIM_CABINET_FIELDS_H
#define SORVANE_SIM_CABINET_FIELDS_H

#include "sim/cabinet/toml.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace cabinet
{

/// For a message, which is one line.
std::string printable(std::string text, std::size_t longest = 60);

class Mistakes
{
public:
    explicit Mistakes(std::string file) : file_(std::move(file)) {}

    void add(int line, const std::string &text);
    std::size_t count() const { return byLine_.size(); }
    /// Throws Error with all of them, in the order of their lines.
    void throwIfAny() const;

private:
    std::string file_;
    std::multimap<int, std::string> byLine_;
};

constexpr int lineOf(const toml::source_region &region)
{
    return static_cast<int>(region.begin.line);
}

/// Keys are taken one by one. One that is missing or wrong leaves its value as it was and is told.
class Fields
{
public:
    /// `what` begins each message: `input "door"`.
    Fields(const toml::table &table, int line, std::string what, Mistakes &mistakes)
        : table_(&table), line_(line), what_(std::move(what)), mistakes_(mistakes)
    {
    }
    /// A value of its own that stands for a table with this one key.
    Fields(const toml::node &value, const char *key, int line, std::string what, Mistakes &mistakes)
        : table_(value.as_table()), value_(table_ ? nullptr : &value), valueKey_(key), line_(line),
          what_(std::move(what)), mistakes_(mistakes)
    {
    }

    int line() const { return line_; }
    void setWhat(std::string what) { what_ = std::move(what); }

    /// Null where it is missing, which is no mistake.
    const toml::node *take(const std::string &key);

    /// Each is false where nothing was stored.
    bool number(const char *key, unsigned int least, unsigned int most, unsigned int &value);
    bool text(const char *key, std::string &value);
    bool name(const char *key, std::string &value);
    bool word(const char *key, const std::vector<std::string> &allowed, std::string &value);
    /// `yes` sets the value, `no` clears it.
    void choice(const char *key, const char *yes, const char *no, bool &value);

    /// It has to be there.
    void need(const char *key, const std::vector<std::string> &allowed);
    /// It is there, and wrong.
    void wrong(const char *key, const std::vector<std::string> &allowed);
    void mistake(const std::string &text) { mistakes_.add(line_, inFront() + text); }
    /// Tells every key that nobody took.
    void end();

private:
    const toml::node *find(const std::string &key) const;
    std::string inFront() const { return what_.empty() ? "" : what_ + ": "; }

    const toml::table *table_;
    const toml::node *value_ = nullptr;
    const char *valueKey_ = "";
    int line_;
    std::string what_;
    Mistakes &mistakes_;
    std::vector<std::string> known_;
};

/// What a name is, for somebody who gave a word that is none; empty for a name.
std::string whatIsAName(const std::string &word);

}  // namespace cabinet

#endif
