#include "sim/language/commands.h"

#include "sim/language/board_actions.h"
#include "sim/language/state_json.h"
#include "sim/language/state_text.h"

#include <algorithm>

namespace sim
{

namespace
{

const ActionKind *findAction(const std::string &name)
{
    const auto found = std::find_if(std::begin(actionKinds), std::end(actionKinds),
                                    [&name](const ActionKind &kind) { return name == kind.name; });
    return found == std::end(actionKinds) ? nullptr : found;
}

constexpr char stateUsage[] = "state [--json]";

std::vector<int> plugged(const VirtualBoards &boards)
{
    std::vector<int> numbers;
    for (int deviceNo = 0; deviceNo < deviceCount; ++deviceNo) {
        if (boards.find(deviceNo))
            numbers.push_back(deviceNo);
    }
    return numbers;
}

std::string named(const std::vector<int> &numbers)
{
    TextWords texts;
    for (const int number : numbers)
        texts.push_back(std::to_string(number));
    return join(texts, ", ");
}

std::vector<NumberedState> statesOf(VirtualBoards &boards, const std::vector<int> &numbers)
{
    std::vector<NumberedState> states;
    for (const int number : numbers) {
        const std::shared_ptr<VirtualBoard> board = boards.hold(number);
        const auto lock = board->lock();
        states.push_back({number, board->state()});
    }
    return states;
}

std::vector<int> checkedNumbers(const VirtualBoards &boards, std::optional<int> deviceNo)
{
    std::vector<int> numbers = plugged(boards);
    if (!deviceNo)
        return numbers;
    if (std::find(numbers.begin(), numbers.end(), *deviceNo) == numbers.end())
        throw UsageError("there is no board " + std::to_string(*deviceNo) + "; allowed: " + named(numbers));
    return {*deviceNo};
}

}  // namespace

Command Command::parse(const TextWords &words)
{
    Command command;
    auto word = words.begin();
    if (word != words.end() && *word == "--board") {
        command.deviceNo_ =
            static_cast<int>(numberFrom(++word == words.end() ? "" : *word, "a device number", 0, deviceCount - 1));
        ++word;
    }
    const std::string name = word == words.end() ? "" : *word++;
    const TextWords rest(word, words.end());
    if (name == "state") {
        const bool json = rest == TextWords{"--json"};
        if (!json && !rest.empty())
            throw UsageError("allowed is " + std::string(stateUsage));
        command.onAll_ = [json](VirtualBoards &boards, std::optional<int> deviceNo) {
            const std::vector<NumberedState> states = statesOf(boards, checkedNumbers(boards, deviceNo));
            return json ? jsonOf(states) : textOf(states);
        };
        return command;
    }
    const ActionKind *kind = findAction(name);
    if (!kind) {
        TextWords names;
        for (const ActionKind &known : actionKinds)
            names.emplace_back(known.name);
        names.emplace_back("state");
        refuse(name, "command", names);
    }
    try {
        Arguments arguments(rest);
        command.onOne_ = kind->parse(arguments);
        arguments.end();
    } catch (const UsageError &error) {
        throw UsageError(name + ": " + error.what() + " (" + kind->usage + ")");
    }
    return command;
}

std::string Command::carryOut(VirtualBoards &boards) const
{
    if (onAll_)
        return onAll_(boards, deviceNo_);
    const std::vector<int> numbers = checkedNumbers(boards, deviceNo_);
    if (numbers.empty())
        throw UsageError("there is no board; boards come with --board N=MODEL of run or serve");
    if (numbers.size() != 1)
        throw UsageError("which board? Say --board with one of: " + named(numbers));
    const std::shared_ptr<VirtualBoard> board = boards.hold(numbers[0]);
    const auto lock = board->lock();
    return onOne_(*board);
}

std::string commandsHelp()
{
    std::string help = "Commands, each on one board ([--board N] before it when there are several):\n";
    const auto line = [&help](const std::string &usage, const std::string &text) {
        help += "  " + usage + "\n      " + text + "\n";
    };
    for (const ActionKind &kind : actionKinds)
        line(kind.usage, kind.help);
    line(stateUsage, "the whole board, or every board, as text or JSON; on the command line also --follow");
    return help;
}

}  // namespace sim
