#include "sim/language/grammar.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace sim
{

namespace
{

using Json = nlohmann::ordered_json;

std::string usageOf(const Argument &argument)
{
    const std::string text = argument.name + std::string(argument.repeated ? "..." : "");
    return argument.optional ? "[" + text + "]" : text;
}

std::string usageOf(const Option &option)
{
    return "[" + std::string(option.mark) + (option.argument ? " " + usageOf(*option.argument) : "") + "]";
}

std::string startOf(const Syntax &row)
{
    return row.name + (row.subject ? " " + usageOf(*row.subject) : std::string());
}

// What tells the row from others of its name.
std::string formOf(const Syntax &row)
{
    std::string form;
    for (const char *keyword : row.keywords)
        form += (form.empty() ? "" : "|") + std::string(keyword);
    form += argumentsOf(row);
    return form.empty() || form[0] != ' ' ? form : form.substr(1);
}

void addOnce(TextWords &words, const std::string &word)
{
    if (std::find(words.begin(), words.end(), word) == words.end())
        words.push_back(word);
}

const char *nameOf(Sort sort)
{
    switch (sort) {
    case Sort::Number:
        return "number";
    case Sort::Part:
        return "part";
    case Sort::Time:
        return "time";
    case Sort::Choice:
        return "choice";
    case Sort::Byte:
        return "byte";
    case Sort::Operation:
        return "operation";
    case Sort::Condition:
        return "condition";
    case Sort::Text:
        return "text";
    case Sort::Content:
        return "content";
    case Sort::NewFile:
        break;
    }
    return "new file";
}

Json of(const Argument &argument)
{
    Json json{{"name", argument.name},
              {"sort", nameOf(argument.sort)},
              {"what", argument.what},
              {"optional", argument.optional},
              {"repeated", argument.repeated}};
    if (argument.sort == Sort::Choice)
        json["choices"] = argument.choices;
    if (argument.sort == Sort::Number || argument.sort == Sort::Part) {
        json["least"] = argument.least;
        json["most"] = argument.most;
    }
    if (argument.sort == Sort::Part) {
        json["kinds"] = Json::array();
        for (const cabinet::Kind kind : argument.kinds) {
            if (const Json word = wordFor(kind); json["kinds"].empty() || json["kinds"].back() != word)
                json["kinds"].push_back(word);
        }
    }
    return json;
}

Json of(const Syntax &row)
{
    Json json{{"name", row.name},         {"usage", usageOf(row)},
              {"help", row.help},         {"subject", row.subject ? of(*row.subject) : Json()},
              {"keywords", row.keywords}, {"arguments", Json::array()},
              {"options", Json::array()}};
    for (const Argument &argument : row.arguments)
        json["arguments"].push_back(of(argument));
    for (const Option &option : row.options)
        json["options"].push_back({{"mark", option.mark},
                                   {"argument", option.argument ? of(*option.argument) : Json()},
                                   {"help", option.help}});
    return json;
}

}  // namespace

std::string argumentsOf(const Syntax &row)
{
    std::string text;
    for (const Argument &argument : row.arguments)
        text += " " + usageOf(argument);
    return text;
}

std::string usageOf(const Syntax &row)
{
    const std::string form = formOf(row);
    std::string usage = startOf(row) + (form.empty() ? "" : " " + form);
    for (const Option &option : row.options)
        usage += " " + usageOf(option);
    return usage;
}

std::string usageOf(const SyntaxTable &table, const std::string &name)
{
    std::string start;
    TextWords forms;
    TextWords options;
    for (const Syntax *row : table) {
        if (name != row->name)
            continue;
        start = startOf(*row);
        if (const std::string form = formOf(*row); !form.empty())
            forms.push_back(form);
        for (const Option &option : row->options)
            addOnce(options, usageOf(option));
    }
    for (const TextWords &part : {TextWords{join(forms, "|")}, options})
        start += part.empty() || part[0].empty() ? "" : " " + join(part, " ");
    return start;
}

TextWords namesIn(const SyntaxTable &table)
{
    TextWords names;
    for (const Syntax *row : table)
        addOnce(names, row->name);
    return names;
}

TextWords wordsIn(const SyntaxTable &table)
{
    TextWords words;
    for (const Syntax *row : table) {
        addOnce(words, row->name);
        for (const char *keyword : row->keywords)
            addOnce(words, keyword);
        for (const Option &option : row->options) {
            if (option.mark[0] != '-')
                addOnce(words, option.mark);
        }
    }
    return words;
}

std::string jsonOf(const std::map<std::string, SyntaxTable> &tables)
{
    Json all;
    for (const auto &[name, table] : tables) {
        Json &rows = all[name] = Json::array();
        for (const Syntax *row : table)
            rows.push_back(of(*row));
    }
    return all.dump(2);
}

}  // namespace sim
