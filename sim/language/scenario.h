// A script of commands: one a line, `#` begins a comment, `at 1.5s` before a command says when, counted from the start
// of the program. A line without `at` is carried out before the program starts, wherever it stands above a line
// `steps`. What stands below that is done one after the other while the program runs (steps.h). `at end expect ...`
// looks at the boards as the program left them, wherever it stands.
#ifndef SORVANE_SIM_LANGUAGE_SCENARIO_H
#define SORVANE_SIM_LANGUAGE_SCENARIO_H

#include "sim/language/board_options.h"
#include "sim/language/commands.h"
#include "sim/language/steps.h"

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
    /// Each line a step.
    static Scenario fromSteps(const TextWords &lines);

    const Steps &steps() const { return steps_; }

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
    void add(TextWords words, const std::string &name, const std::string &where);
    void addStep(const TextWords &words, const std::string &name, const std::string &where);

    std::vector<Line> lines_;
    Steps steps_;
    bool inSteps_ = false;  // while it is read
};

}  // namespace sim

#endif
