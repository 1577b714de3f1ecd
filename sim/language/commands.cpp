#include "sim/language/commands.h"

#include <algorithm>
#include <cctype>

namespace sim
{

namespace
{

std::vector<int> numbersOf(const VirtualBoards &boards)
{
    std::vector<int> numbers;
    for (int deviceNo = 0; deviceNo < deviceCount; ++deviceNo) {
        if (boards.find(deviceNo))
            numbers.push_back(deviceNo);
    }
    return numbers;
}

std::string listed(const std::vector<int> &numbers, const cabinet::Cabinet &cabinet)
{
    TextWords texts;
    for (const int number : numbers) {
        const cabinet::Board *board = cabinet.board(number);
        const bool named = board && !board->name.empty();
        texts.push_back(std::to_string(number) + (named ? " (" + board->name + ")" : ""));
    }
    return join(texts, ", ");
}

const Argument *argumentOf(const Syntax &row, Sort sort)
{
    const auto found = std::find_if(row.arguments.begin(), row.arguments.end(),
                                    [sort](const Argument &argument) { return argument.sort == sort; });
    return found == row.arguments.end() ? nullptr : &*found;
}

int onlyOne(const std::vector<int> &numbers, const cabinet::Cabinet &cabinet)
{
    if (numbers.empty())
        throw UsageError("there is no board; boards come with --board N=MODEL or --cabinet FILE of run or serve");
    if (numbers.size() != 1)
        throw UsageError("which board? Say --board with one of: " + listed(numbers, cabinet));
    return numbers[0];
}

}  // namespace

EventNumbers eventsUpToNow(const VirtualBoards &boards)
{
    EventNumbers last;
    for (const int number : numbersOf(boards)) {
        const std::shared_ptr<VirtualBoard> board = boards.hold(number);
        const auto lock = board->lock();
        last[number] = board->events().last();
    }
    return last;
}

int onlyDevice(const Call &call)
{
    return onlyOne(call.devices, call.session.cabinet);
}

const SyntaxTable &commandSyntax()
{
    static const SyntaxTable table = syntaxOf(commandRows());
    return table;
}

SyntaxTable syntaxOf(const std::vector<CommandRow> &rows)
{
    SyntaxTable table;
    for (const CommandRow &row : rows)
        table.push_back(&row.syntax);
    return table;
}

Command Command::parse(const TextWords &words, const std::vector<CommandRow> &rows)
{
    const SyntaxTable table = syntaxOf(rows);
    Command command;
    WordStream stream(words);
    if (stream.takeIf("--board")) {
        command.board_ = stream.take();
        if (command.board_.empty() || std::isdigit(static_cast<unsigned char>(command.board_[0])))
            (void)numberFrom(command.board_, "a device number", 0, deviceCount - 1);
    }
    command.reading_ = Reading::parse(table, "command", stream);
    const Syntax *syntax = &command.reading_.row();
    command.row_ =
        &*std::find_if(rows.begin(), rows.end(), [syntax](const CommandRow &row) { return &row.syntax == syntax; });
    try {
        stream.end();
        if (command.row_->check)
            command.row_->check(command.reading_);
    } catch (const UsageError &error) {
        throw UsageError(syntax->name + std::string(": ") + error.what() + " (" + usageOf(table, syntax->name) + ")");
    }
    return command;
}

void Command::setContent(Bytes content)
{
    if (const Argument *argument = argumentOf(row_->syntax, Sort::Content))
        reading_.setContent(argument->name, std::move(content));
}

std::optional<std::string> Command::contentFile() const
{
    return fileOf(Sort::Content);
}

std::optional<std::string> Command::newFile() const
{
    return fileOf(Sort::NewFile);
}

std::optional<std::string> Command::fileOf(Sort sort) const
{
    const Argument *file = argumentOf(row_->syntax, sort);
    return file ? std::optional(reading_[file->name].word) : std::nullopt;
}

std::vector<int> Command::devicesIn(const Session &session) const
{
    std::vector<int> numbers = numbersOf(session.boards);
    std::optional<int> said;
    if (!board_.empty()) {
        said = session.cabinet.deviceNamed(board_);
        if (!said && std::isdigit(static_cast<unsigned char>(board_[0])))
            said = static_cast<int>(numberFrom(board_, "a device number", 0, deviceCount - 1));
    }
    if (!said && !board_.empty())
        throw UsageError("there is no board \"" + board_ + "\"; allowed: " + listed(numbers, session.cabinet));
    const std::optional<int> named = reading_.deviceIn(session.cabinet, said);
    if (!named)
        return numbers;
    if (std::find(numbers.begin(), numbers.end(), *named) == numbers.end())
        throw UsageError("there is no board " + std::to_string(*named) +
                         "; allowed: " + listed(numbers, session.cabinet));
    return {*named};
}

std::vector<int> Command::resolve(const Session &session, Reading &reading) const
{
    std::vector<int> devices = devicesIn(session);
    reading = reading_;
    if (devices.size() == 1)
        reading.resolve(session.cabinet, devices[0]);
    return devices;
}

Outcome Command::carryOut(Session &session) const
{
    Reading reading;
    const std::vector<int> devices = resolve(session, reading);
    if (const auto *action = std::get_if<FreeAction>(&row_->action)) {
        Call call{session, reading, devices};
        return (*action)(call);
    }
    const std::shared_ptr<VirtualBoard> board = session.boards.hold(onlyOne(devices, session.cabinet));
    const auto lock = board->lock();
    if (const auto *action = std::get_if<BoardAction>(&row_->action))
        return (*action)(*board, reading);
    std::get<QuietBoardAction>(row_->action)(*board, reading);
    return {};
}

std::string commandsHelp()
{
    std::string help = "Commands, each on one board ([--board N|NAME] before it when there are several):\n";
    for (const Syntax *row : commandSyntax())
        help += "  " + usageOf(*row) + "\n      " + row->help + "\n";
    help += "Conditions, each also behind `not`:\n";
    for (const Syntax *row : conditionSyntax())
        help += "  " + usageOf(*row) + "\n      " + row->help + "\n";
    return help;
}

}  // namespace sim
