#include "sim/language/scenario.h"

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
            TextWords words = splitWords(withoutComment(line));
            if (words.empty())
                continue;
            std::optional<Nanoseconds> at;
            if (words[0] == "at") {
                at = durationFrom(words.size() > 1 ? words[1] : "");
                words.erase(words.begin(), words.begin() + 2);
            }
            scenario.lines_.push_back({at, Command::parse(words), where});
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

void Scenario::check(const std::vector<BoardOptions> &options) const
{
    ManualClock clock;
    VirtualBoards boards(clock);
    plugBoards(boards, options);
    for (const Line &line : lines_) {
        try {
            line.command.carryOut(boards);
        } catch (const std::exception &error) {
            throw UsageError(line.where + error.what());
        }
    }
}

void Scenario::prepare(VirtualBoards &boards) const
{
    for (const Line &line : lines_) {
        if (!line.at)
            carryOut(line, boards);
    }
}

void Scenario::play(VirtualBoards &boards, std::atomic<std::size_t> &reached) const
{
    const auto start = std::chrono::steady_clock::now();
    for (const Line &line : lines_) {
        if (line.at) {
            std::this_thread::sleep_until(start + *line.at);
            ++reached;
            carryOut(line, boards);
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

void Scenario::carryOut(const Line &line, VirtualBoards &boards)
{
    try {
        std::fputs(line.command.carryOut(boards).c_str(), stderr);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "sorvane-sim: %s%s\n", line.where.c_str(), error.what());
    }
}

}  // namespace sim
