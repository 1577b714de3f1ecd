#include "sim/language/reading.h"

#include "protocol/families.h"

#include <algorithm>
#include <cctype>

namespace sim
{

namespace
{

bool isKeywordOf(const Syntax &row, const std::string &word)
{
    return std::find(row.keywords.begin(), row.keywords.end(), word) != row.keywords.end();
}

const Option *optionOf(const Syntax &row, const std::string &word)
{
    const auto found = std::find_if(row.options.begin(), row.options.end(),
                                    [&word](const Option &option) { return word == option.mark; });
    return found == row.options.end() ? nullptr : &*found;
}

bool isByte(const std::string &word)
{
    const auto isDigit = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; };
    return !word.empty() && word.size() <= 2 && std::all_of(word.begin(), word.end(), isDigit);
}

unsigned int byteFrom(const std::string &word)
{
    if (!isByte(word))
        throw UsageError("\"" + word + "\" is no byte; allowed are one or two hexadecimal digits, as in 2A 00");
    return static_cast<unsigned int>(std::stoul(word, nullptr, 16));
}

void checkOperation(const std::string &word)
{
    for (const protocol::Family &family : protocol::families()) {
        for (const protocol::Operation &operation : family.operations) {
            if (operation.isSentBy(word) || word == operation.name)
                return;
        }
    }
    throw UsageError((word.empty() ? "missing operation" : "unknown operation \"" + word + "\"") +
                     "; allowed are those of SorvaneUSB that ask a board, as in GetClock");
}

// Whether a word may be what this argument is, where it can be left out or repeated.
bool mayBe(const Argument &argument, const Syntax &row, const std::string &word)
{
    if (argument.sort == Sort::Byte)
        return isByte(word);
    const bool isNumber = std::isdigit(static_cast<unsigned char>(word[0])) != 0;
    return !optionOf(row, word) && (isNumber || (argument.sort != Sort::Number && argument.sort != Sort::Time));
}

SyntaxTable rowsNamed(const SyntaxTable &table, const std::string &name)
{
    SyntaxTable rows;
    std::copy_if(table.begin(), table.end(), std::back_inserter(rows),
                 [&name](const Syntax *row) { return name == row->name; });
    return rows;
}

const Syntax &chooseRow(const SyntaxTable &rows, WordStream &words)
{
    const std::string word = words.peek();
    for (const Syntax *row : rows) {
        if (row->keywords.empty() || isKeywordOf(*row, word))
            return *row;
    }
    TextWords allowed;
    for (const Syntax *row : rows) {
        for (const char *keyword : row->keywords)
            allowed.push_back(keyword + argumentsOf(*row));
    }
    refuse(word, "word", allowed);
}

Value valueFrom(const Argument &argument, WordStream &words)
{
    const bool whole = argument.sort == Sort::Text || argument.sort == Sort::Content || argument.sort == Sort::NewFile;
    Value value;
    if (argument.sort == Sort::Condition) {
        value.condition = std::make_shared<ConditionReading>(ConditionReading::parse(words));
        return value;
    }
    value.word = whole ? words.takeWhole() : words.take();
    switch (argument.sort) {
    case Sort::Part:
        if (value.isName())
            break;
        [[fallthrough]];
    case Sort::Number:
        value.number = static_cast<unsigned int>(numberFrom(value.word, argument.what, argument.least, argument.most));
        break;
    case Sort::Time:
        value.time = durationFrom(value.word);
        break;
    case Sort::Choice:
        if (std::find(argument.choices.begin(), argument.choices.end(), value.word) == argument.choices.end())
            refuse(value.word, argument.what, {argument.choices.begin(), argument.choices.end()});
        break;
    case Sort::Byte:
        value.number = byteFrom(value.word);
        break;
    case Sort::Operation:
        checkOperation(value.word);
        break;
    case Sort::Condition:
        break;
    case Sort::Text:
        value.bytes = bytesOfText(value.word);
        [[fallthrough]];
    case Sort::Content:
    case Sort::NewFile:
        if (value.word.empty())
            throw UsageError("missing " + std::string(argument.name) + "; allowed is " + argument.what);
    }
    return value;
}

}  // namespace

std::string WordStream::peek()
{
    while (next_ < words_.size()) {
        std::string word = words_[next_];
        if (word.find_first_of(" \t\n\v\f\r") == std::string::npos)
            return word;
        const TextWords inside = splitWords(word);
        const auto at = words_.begin() + static_cast<std::ptrdiff_t>(next_);
        if (inside == TextWords{word})
            return word;
        words_.insert(words_.erase(at), inside.begin(), inside.end());
    }
    return "";
}

std::string WordStream::take()
{
    std::string word = peek();
    next_ = std::min(next_ + 1, words_.size());
    return word;
}

bool WordStream::takeIf(const std::string &word)
{
    if (!any() || peek() != word)
        return false;
    (void)take();
    return true;
}

std::string WordStream::takeWhole()
{
    return next_ < words_.size() ? words_[next_++] : "";
}

std::string WordStream::since(std::size_t place) const
{
    const auto at = [this](std::size_t index) { return words_.begin() + static_cast<std::ptrdiff_t>(index); };
    return join({at(place), at(next_)}, " ");
}

void WordStream::end()
{
    if (any())
        throw UsageError("nothing is allowed behind it, but there is \"" + peek() + "\"");
}

Reading Reading::parse(const SyntaxTable &table, const std::string &what, WordStream &words)
{
    const std::string name = words.take();
    const SyntaxTable rows = rowsNamed(table, name);
    if (rows.empty())
        refuse(name, what, namesIn(table));
    try {
        Reading reading;
        reading.row_ = rows[0];
        const auto isKeyword = [&words](const Syntax *row) { return isKeywordOf(*row, words.peek()); };
        const std::optional<Argument> &subject = rows[0]->subject;
        if (subject && !(subject->optional && (!words.any() || std::any_of(rows.begin(), rows.end(), isKeyword))))
            reading.takeArgument(*subject, subject->name, words);
        reading.row_ = &chooseRow(rows, words);
        if (!reading.row_->keywords.empty())
            reading.keyword_ = words.take();
        for (const Argument &argument : reading.row_->arguments)
            reading.takeArgument(argument, argument.name, words);
        reading.takeOptions(words);
        return reading;
    } catch (const UsageError &error) {
        throw UsageError(name + ": " + error.what() + " (" + usageOf(table, name) + ")");
    }
}

void Reading::takeArgument(const Argument &argument, const char *key, WordStream &words)
{
    const auto comes = [&] { return words.any() && mayBe(argument, *row_, words.peek()); };
    if (argument.optional && !comes())
        return;
    std::vector<Value> &values = values_[key];
    do
        values.push_back(valueFrom(argument, words));
    while (argument.repeated && comes());
}

void Reading::takeOptions(WordStream &words)
{
    while (!row_->options.empty() && words.any()) {
        const Option *option = optionOf(*row_, words.peek());
        if (!option)
            return;
        (void)words.take();
        if (has(option->mark))
            throw UsageError("\"" + std::string(option->mark) + "\" stands there twice; allowed is once");
        if (option->argument)
            takeArgument(*option->argument, option->mark, words);
        else
            values_[option->mark].push_back({});
    }
}

std::vector<Value> Reading::all(const char *name) const
{
    const auto found = values_.find(name);
    return found == values_.end() ? std::vector<Value>() : found->second;
}

unsigned int Reading::numberOr(const char *name, unsigned int otherwise) const
{
    return has(name) ? (*this)[name].number : otherwise;
}

void Reading::forEachPart(const std::function<void(const Argument &argument, const char *key)> &visit) const
{
    const auto visitIfPart = [&](const Argument &argument, const char *key) {
        if (argument.sort == Sort::Part && has(key))
            visit(argument, key);
    };
    if (row_->subject)
        visitIfPart(*row_->subject, row_->subject->name);
    for (const Argument &argument : row_->arguments)
        visitIfPart(argument, argument.name);
    for (const Option &option : row_->options) {
        if (option.argument)
            visitIfPart(*option.argument, option.mark);
    }
}

std::optional<int> Reading::deviceIn(const cabinet::Cabinet &cabinet, std::optional<int> said) const
{
    std::optional<int> device = said;
    try {
        forEachPart([&](const Argument &argument, const char *key) {
            for (const Value &value : values_.at(key)) {
                if (value.isName())
                    device = cabinet.find(argument.kinds, value.word, device).device;
            }
        });
    } catch (const cabinet::Error &error) {
        throw UsageError(row_->name + std::string(": ") + error.what());
    }
    for (const auto &[key, values] : values_) {
        for (const Value &value : values) {
            if (value.condition)
                device = value.condition->reading.deviceIn(cabinet, device);
        }
    }
    return device;
}

void Reading::resolve(const cabinet::Cabinet &cabinet, int device)
{
    forEachPart([&](const Argument &argument, const char *key) {
        for (Value &value : values_.at(key)) {
            const cabinet::Place place = cabinet.find(argument.kinds, value.word, device);
            value.number = place.number;
            value.part = place.part;
        }
    });
    for (auto &[key, values] : values_) {
        for (Value &value : values) {
            if (!value.condition)
                continue;
            value.condition = std::make_shared<ConditionReading>(*value.condition);
            value.condition->reading.resolve(cabinet, device);
        }
    }
}

ConditionReading ConditionReading::parse(WordStream &words)
{
    ConditionReading condition;
    (void)words.peek();
    const std::size_t start = words.place();
    while (words.takeIf("not"))
        condition.negated = !condition.negated;
    condition.reading = Reading::parse(conditionSyntax(), "condition", words);
    condition.text = words.since(start);
    return condition;
}

}  // namespace sim
