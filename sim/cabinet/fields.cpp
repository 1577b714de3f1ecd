#include "sim/cabinet/fields.h"

#include "sim/cabinet/cabinet.h"
#include "sim/cabinet/grammar_words.h"

#include <algorithm>
#include <sstream>

namespace cabinet
{

namespace
{

std::string joined(const std::vector<std::string> &texts)
{
    std::string list;
    for (const std::string &text : texts)
        list += (list.empty() ? "" : ", ") + text;
    return list;
}

std::string shown(const toml::node &node)
{
    std::ostringstream text;
    if (node.is_string())
        text << '"' << printable(node.ref<std::string>()) << '"';
    else if (node.is_table())
        text << "a table";
    else if (node.is_array())
        text << "a list";
    else
        node.visit([&text](const auto &value) {
            if constexpr (toml::is_value<decltype(value)>)
                text << value;
        });
    return text.str();
}

}  // namespace

std::string printable(std::string text, std::size_t longest)
{
    if (text.size() > longest)
        text = text.substr(0, longest) + "...";
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    return text;
}

void Mistakes::add(int line, const std::string &text)
{
    byLine_.emplace(line, text);
}

void Mistakes::throwIfAny() const
{
    if (byLine_.empty())
        return;
    std::string all;
    for (const auto &[line, text] : byLine_)
        all += (all.empty() ? "" : "\n") + file_ + ":" + std::to_string(line) + ": " + text;
    throw Error(all);
}

const toml::node *Fields::find(const std::string &key) const
{
    if (table_)
        return table_->get(key);
    return key == valueKey_ ? value_ : nullptr;
}

const toml::node *Fields::take(const std::string &key)
{
    if (std::find(known_.begin(), known_.end(), key) == known_.end())
        known_.push_back(key);
    return find(key);
}

void Fields::wrong(const char *key, const std::vector<std::string> &allowed)
{
    const toml::node &node = *find(key);
    mistakes_.add(lineOf(node.source()), inFront() + key + " is " + shown(node) + "; allowed: " + joined(allowed));
}

bool Fields::number(const char *key, unsigned int least, unsigned int most, unsigned int &value)
{
    const toml::node *node = take(key);
    if (!node)
        return false;
    const toml::value<std::int64_t> *given = node->as_integer();
    if (!given || given->get() < least || given->get() > most) {
        wrong(key, {std::to_string(least) + " to " + std::to_string(most)});
        return false;
    }
    value = static_cast<unsigned int>(given->get());
    return true;
}

bool Fields::text(const char *key, std::string &value)
{
    const toml::node *node = take(key);
    if (!node)
        return false;
    if (!node->is_string()) {
        wrong(key, {"a text in quotes"});
        return false;
    }
    value = node->ref<std::string>();
    return true;
}

bool Fields::name(const char *key, std::string &value)
{
    std::string text;
    if (!this->text(key, text))
        return false;
    if (const std::string allowed = whatIsAName(text); !allowed.empty()) {
        wrong(key, {allowed});
        return false;
    }
    value = text;
    return true;
}

bool Fields::word(const char *key, const std::vector<std::string> &allowed, std::string &value)
{
    const toml::node *node = take(key);
    if (!node)
        return false;
    if (!node->is_string() || std::find(allowed.begin(), allowed.end(), node->ref<std::string>()) == allowed.end()) {
        wrong(key, allowed);
        return false;
    }
    value = node->ref<std::string>();
    return true;
}

void Fields::choice(const char *key, const char *yes, const char *no, bool &value)
{
    std::string chosen;
    if (word(key, {yes, no}, chosen))
        value = chosen == yes;
}

void Fields::need(const char *key, const std::vector<std::string> &allowed)
{
    if (!find(key))
        mistake(std::string(key) + " is missing; allowed: " + joined(allowed));
}

void Fields::end()
{
    if (!table_)
        return;
    for (const auto &[key, node] : *table_) {
        const std::string name(key.str());
        if (std::find(known_.begin(), known_.end(), name) == known_.end())
            mistakes_.add(lineOf(key.source()),
                          inFront() + "unknown key \"" + printable(name) + "\"; allowed: " + joined(known_));
    }
}

std::string whatIsAName(const std::string &word)
{
    if (isName(word))
        return "";
    return isGrammarWord(word) ? "a name that is no word of the commands" : "a letter, then letters, digits, _ and -";
}

}  // namespace cabinet
