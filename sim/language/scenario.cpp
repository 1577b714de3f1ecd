#include "sim/language/scenario.h"

#include "sim/language/files.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sys/uio.h>
#include <thread>
#include <unistd.h>

namespace sim
{

namespace
{

// A # inside quotes belongs to the text.
std::string withoutComment(const std::string &line)
{
    bool quoted = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (quoted && line[at] == '\\')
            ++at;
        else if (line[at] == '"')
            quoted = !quoted;
        else if (line[at] == '#' && !quoted)
            return line.substr(0, at);
    }
    return line;
}

void writeError(const std::array<std::string_view, 3> &parts)
{
    std::array<iovec, 3> pieces;
    std::transform(parts.begin(), parts.end(), pieces.begin(), [](std::string_view part) {
        return iovec{const_cast<char *>(part.data()), part.size()};
    });
    (void)!::writev(STDERR_FILENO, pieces.data(), pieces.size());
}

// Its files lie beside the scenario.
Command commandFor(const TextWords &words, const std::string &scenario, const std::vector<CommandRow> &rows)
{
    Command command = Command::parse(words, rows);
    if (!command.row().inScenarios)
        throw UsageError("\"" + join(words, " ") + "\" writes for whoever asks, which is allowed with ctl only");
    if (const std::optional<std::string> file = command.contentFile()) {
        const std::string folder = file->front() == '/' ? "" : scenario.substr(0, scenario.rfind('/') + 1);
        command.setContent(bytesOfFile(folder + *file));
    }
    return command;
}

bool isCommand(const Command &command, const char *name)
{
    return command.reading().row().name == std::string(name);
}

Command timedCommandFor(const TextWords &words, const std::string &scenario)
{
    Command command = commandFor(words, scenario, commandRows());
    if (command.reading().has("CONDITION"))
        throw UsageError("\"" + join(words, " ") +
                         "\" is a step; allowed are those below a line `steps`, and at end expect");
    return command;
}

}  // namespace

Scenario Scenario::read(const std::string &file)
{
    std::ifstream text(file);
    if (!text)
        throw UsageError("--scenario \"" + file + "\": " + std::strerror(errno));
    return parse(text, file);
}

Scenario Scenario::parse(std::istream &text, const std::string &name)
{
    Scenario scenario;
    unsigned int number = 0;
    for (std::string line; std::getline(text, line);) {
        const std::string where = name + ":" + std::to_string(++number) + ": ";
        try {
            scenario.add(splitWords(withoutComment(line)), name, where);
        } catch (const UsageError &error) {
            throw UsageError(where + error.what());
        }
    }
    if (text.bad())
        throw UsageError(name + ": it cannot be read; allowed is a file of commands");
    std::stable_sort(scenario.lines_.begin(), scenario.lines_.end(),
                     [](const Line &one, const Line &other) { return one.at < other.at; });
    return scenario;
}

Scenario Scenario::fromSteps(const TextWords &lines)
{
    Scenario scenario;
    scenario.inSteps_ = true;
    for (std::size_t number = 0; number < lines.size(); ++number) {
        const std::string where = "--steps:" + std::to_string(number + 1) + ": ";
        try {
            scenario.add(splitWords(withoutComment(lines[number])), "", where);
        } catch (const UsageError &error) {
            throw UsageError(where + error.what());
        }
    }
    return scenario;
}

void Scenario::add(TextWords words, const std::string &name, const std::string &where)
{
    if (words.empty())
        return;
    if (words == TextWords{"steps"}) {
        if (inSteps_)
            throw UsageError("\"steps\" stands there twice; allowed is once");
        inSteps_ = true;
    } else if (words[0] == "at" && words.size() > 1 && words[1] == "end") {
        words.erase(words.begin(), words.begin() + 2);
        Command command = commandFor(words, name, commandRows());
        if (!isCommand(command, "expect"))
            throw UsageError("allowed is at end expect CONDITION");
        steps_.atEnd.push_back({std::move(command), where});
    } else if (words[0] == "at") {
        if (inSteps_)
            throw UsageError("steps have no times; allowed are lines with `at` above the line `steps`, and pause TIME");
        const Nanoseconds at = durationFrom(words.size() > 1 ? words[1] : "");
        words.erase(words.begin(), words.begin() + 2);
        lines_.push_back({at, timedCommandFor(words, name), where});
    } else if (inSteps_) {
        addStep(words, name, where);
    } else {
        lines_.push_back({std::nullopt, timedCommandFor(words, name), where});
    }
}

void Scenario::addStep(const TextWords &words, const std::string &name, const std::string &where)
{
    if (!steps_.inOrder.empty() && isCommand(steps_.inOrder.back().command, "stop"))
        throw UsageError("behind stop nothing is reached; allowed is at end expect CONDITION");
    steps_.inOrder.push_back({commandFor(words, name, stepRows()), where});
}

void Scenario::check(const std::vector<BoardOptions> &options, const cabinet::Cabinet &cabinet) const
{
    ManualClock clock;
    VirtualBoards boards(clock);
    plugBoards(boards, options);
    Session session{boards, cabinet};
    for (const Line &line : lines_) {
        try {
            (void)line.command.carryOut(session);
        } catch (const std::exception &error) {
            throw UsageError(line.where + error.what());
        }
    }
    for (const std::vector<Step> *list : {&steps_.inOrder, &steps_.atEnd}) {
        for (const Step &step : *list) {
            try {
                tryStep(step, session);
            } catch (const std::exception &error) {
                throw UsageError(step.where + error.what());
            }
        }
    }
}

void Scenario::prepare(Session &session) const
{
    for (const Line &line : lines_) {
        if (!line.at)
            carryOut(line, session);
    }
}

void Scenario::play(Session &session, std::atomic<std::size_t> &reached) const
{
    const auto start = std::chrono::steady_clock::now();
    for (const Line &line : lines_) {
        if (line.at) {
            std::this_thread::sleep_until(start + *line.at);
            ++reached;
            carryOut(line, session);
        }
    }
}

void Scenario::reportUnplayed(std::size_t reached) const
{
    for (const Line &line : lines_) {
        if (!line.at)
            continue;
        if (reached > 0)
            --reached;
        else
            writeError({"sorvane-sim: ", line.where, "not reached before the end\n"});
    }
}

void Scenario::carryOut(const Line &line, Session &session)
{
    try {
        const Outcome answer = line.command.carryOut(session);
        std::fputs((answer.data.empty() ? answer.text : answer.data + "\n").c_str(), stderr);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "sorvane-sim: %s%s\n", line.where.c_str(), error.what());
    }
}

}  // namespace sim
