// A script of commands: one a line, `#` begins a comment, `at 1.5s` before a command says when, counted from the start
// of the program. A line without `at` is carried out before the program starts, wherever it stands in the file.
#ifndef SORVANE_SIM_LANGUAGE_SCENARIO_H
#define SORVANE_SIM_LANGUAGE_SCENARIO_H

#include "sim/language/board_options.h"
#include "sim/language/commands.h"

#include <atomic>
#include <iosfwd>

namespace sim
{

class Scenario
{
public:
    Scenario() = default;
    /// Throws UsageError with the file's name and the line.
    static Scenario read(const std::string &file);
    static Scenario parse(std::istream &text, const std::string &name);

    /// Throws UsageError, as read() does, for what these boards could not carry out; tries it on others like them.
    void check(const std::vector<BoardOptions> &options, const cabinet::Cabinet &cabinet) const;

    /// Carries out what comes before the start; complaints go to standard error.
    void prepare(Session &session) const;
    /// Carries out the rest, each at its time from now on. Sleeps in between. `reached` counts along for who looks from
    /// another thread.
    void play(Session &session, std::atomic<std::size_t> &reached) const;
    /// For the end of the program, when so much was played: names the lines that are left on standard error. May be
    /// called in a signal handler.
    void reportUnplayed(std::size_t reached) const;

private:
    struct Line {
        std::optional<Nanoseconds> at;
        Command command;
        std::string where;
    };

    static void carryOut(const Line &line, Session &session);

    std::vector<Line> lines_;
};

}  // namespace sim

#endif
