// The language of scenarios, their steps and of `ctl`, conditions, the words of --board and the requests to a run:
// whatever is written, it is carried out or refused with a UsageError.
#include "sim/control/protocol.h"
#include "sim/language/scenario.h"
#include "sim/language/watch.h"
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

// Judged as things happen and looking back it is the same.
void tryCondition(const std::string &text)
{
    const cabinet::Cabinet machine = cabinet::Cabinet::parse(
        "version = 1\n[[board]]\nmodel = 'R35'\ndevice = 0\nfirmware = 'running'\nhoppers = { coins = { input = 5, "
        "stock = 3 } }\nmeters = { total = { address = 8, bytes = 3, order = 'big' } }\ninputs = { door = { number = "
        "4, "
        "active = 'low' } }\n",
        "machine");
    sim::WordStream words({text});
    sim::ConditionReading condition = sim::ConditionReading::parse(words);
    words.end();
    sim::ManualClock clock;
    sim::VirtualBoard board(sim::Model::R35, clock);
    board.firmwareRunning().hopper(5, 3);
    (void)condition.reading.deviceIn(machine, 0);
    condition.reading.resolve(machine, 0);
    const sim::Point start = pointNow(board);
    sim::Watch live(condition, board, start);
    bool held = false;
    const auto pass = [&](std::chrono::milliseconds time) {
        clock.advance(time);
        held = live.look(board);
        (void)live.nextMoment(board);
    };
    const std::initializer_list<unsigned char> flash{0x06, 0x10, 0, 0, 0}, pay{5, 0, 1, 37, 0, 2, 0, 0};
    board.inputs().pulse(4, 2);
    pass(std::chrono::milliseconds(30));
    board.exchange(83, 1, std::data(flash), flash.size());
    board.exchange(112, 1, std::data(pay), pay.size());
    pass(std::chrono::milliseconds(700));
    board.powerCycle();
    pass(std::chrono::milliseconds(500));
    fuzz::require(sim::Watch(condition, board, start).look(board) == held, "looking back tells the same");
    fuzz::require(!live.situation(board, {}).empty(), "there is something to tell");
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

/// The first character chooses: '=' for the words of --board, '?' for a condition, '{' for a request to a run, anything
/// else for a scenario.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    try {
        if (!text.empty() && text[0] == '=')
            tryBoardOptions(text.substr(1));
        else if (!text.empty() && text[0] == '{')
            tryRequest(text);
        else if (!text.empty() && text[0] == '?')
            tryCondition(text.substr(1));
        else
            tryScenario(text);
    } catch (const sim::UsageError &error) {
        fuzz::require(error.what()[0] != '\0', "a refusal says why");
    }
    return 0;
}
