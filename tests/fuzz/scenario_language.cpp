// The language of scenarios and of `ctl`, and the words of --board: whatever is written, it is carried out or refused
// with a UsageError.
#include "sim/control/protocol.h"
#include "sim/language/scenario.h"
#include "tests/fuzz/fuzz_input.h"

#include <sstream>

namespace
{

void tryScenario(const std::string &text)
{
    std::istringstream lines(text);
    const sim::Scenario scenario = sim::Scenario::parse(lines, "scenario");
    const std::vector<sim::BoardOptions> options = sim::boardsFrom({"0=R20", "1=R20s", "15=R35"});
    const cabinet::Cabinet nameless;
    scenario.check(options, nameless);

    sim::ManualClock clock;
    sim::VirtualBoards boards(clock);
    sim::plugBoards(boards, options);
    sim::Session session{boards, nameless};
    scenario.prepare(session);
    for (const sim::BoardOptions &option : options) {
        sim::VirtualBoard &board = *boards.find(option.deviceNo);
        board.exchange(75, 1, nullptr, 0);
        clock.advance(std::chrono::hours(1));
        board.state();
    }
}

void tryBoardOptions(const std::string &text)
{
    std::istringstream lines(text);
    sim::TextWords arguments;
    for (std::string line; std::getline(lines, line);)
        arguments.push_back(line);
    const std::vector<sim::BoardOptions> options = sim::boardsFrom(arguments);
    sim::ManualClock clock;
    sim::VirtualBoards boards(clock);
    sim::plugBoards(boards, options);
}

// Whoever is connected may send anything.
void tryRequest(const std::string &line)
{
    const sim::Request request = sim::requestFrom(line);
    if (request.kind == sim::Request::Kind::Command)
        (void)sim::Command::parse(request.words);
    fuzz::require(sim::lineOf(sim::requestFrom(sim::lineOf(request))) == sim::lineOf(request),
                  "a request is passed on");
}

}  // namespace

/// The first character chooses: '=' for the words of --board, '{' for a request to a run, anything else for a scenario.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    try {
        if (!text.empty() && text[0] == '=')
            tryBoardOptions(text.substr(1));
        else if (!text.empty() && text[0] == '{')
            tryRequest(text);
        else
            tryScenario(text);
    } catch (const sim::UsageError &error) {
        fuzz::require(error.what()[0] != '\0', "a refusal says why");
    }
    return 0;
}
