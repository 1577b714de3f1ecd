// What can be done to the boards while a program drives them, as words: `ctl`, scenarios and the control protocol speak
// the same.
//
//     [--board N|NAME] COMMAND
#ifndef SORVANE_SIM_LANGUAGE_COMMANDS_H
#define SORVANE_SIM_LANGUAGE_COMMANDS_H

#include "sim/board/virtual_boards.h"
#include "sim/language/reading.h"

#include <variant>

namespace sim
{

/// Of a command that has not ended, or has.
struct Outcome {
    int status = 0;       ///< for the exit of whoever asked: 0, or 3 for a condition that does not hold
    std::string text{};   ///< for people, often empty
    std::string data{};   ///< the same as JSON, where there is more to tell than a text
    std::string error{};  ///< when the status is not 0
};

/// Whoever asked and hears, until the command ends, what it tells meanwhile.
class Listener
{
public:
    virtual ~Listener() = default;
    /// An object in JSON, or a line of text. False when nobody hears it.
    virtual bool tell(const std::string &text) = 0;
    virtual bool isGone() = 0;
    /// For poll(): POLLRDHUP when it is gone.
    virtual int descriptor() = 0;
};

/// Of each board, by device number, the last event before a moment.
using EventNumbers = std::map<int, std::uint64_t>;
EventNumbers eventsUpToNow(const VirtualBoards &boards);

/// What commands are carried out on.
struct Session {
    VirtualBoards &boards;
    const cabinet::Cabinet &cabinet;
    bool wantsData = false;        ///< whoever asked takes the data instead of the text
    Listener *listener = nullptr;  ///< null: nobody hears more than the answer
    EventNumbers since{};          ///< where a wait on this board begins; absent: now
};

/// One command on its way; its reading is resolved where one board is meant.
struct Call {
    Session &session;
    const Reading &reading;
    std::vector<int> devices;  ///< the board that was named, or every one
};

/// The board that is meant. Throws UsageError that names the choice where there are several.
int onlyDevice(const Call &call);

/// On one board, with its lock held.
using BoardAction = Outcome (*)(VirtualBoard &board, const Reading &reading);
/// The same without anything to tell.
using QuietBoardAction = void (*)(VirtualBoard &board, const Reading &reading);
/// On any number of boards and for any time; it takes the locks that it needs.
using FreeAction = Outcome (*)(Call &call);

struct CommandRow {
    Syntax syntax;
    std::variant<QuietBoardAction, BoardAction, FreeAction> action;
    void (*check)(const Reading &) = nullptr;  ///< throws UsageError for what no argument alone can tell
    bool inScenarios = true;
};

/// The table of commands.
const std::vector<CommandRow> &commandRows();
/// Its rows for readers.
const SyntaxTable &commandSyntax();
SyntaxTable syntaxOf(const std::vector<CommandRow> &rows);

class Command
{
public:
    /// Throws UsageError for everything that can be told without the boards and their cabinet.
    static Command parse(const TextWords &words, const std::vector<CommandRow> &rows = commandRows());

    const CommandRow &row() const { return *row_; }
    const Reading &reading() const { return reading_; }
    /// The file whose bytes are to go along; none for most commands.
    std::optional<std::string> contentFile() const;
    /// The file that whoever asked writes from the answer's data, {"bytes":"<hexadecimal>"}.
    std::optional<std::string> newFile() const;
    void setContent(Bytes content);

    /// Throws UsageError when there is no such board or part, when the board is not named among several, or when its
    /// model lacks what is asked for.
    Outcome carryOut(Session &session) const;

    /// The boards that are meant, and where that is one, the reading with numbers for names. Throws UsageError.
    std::vector<int> resolve(const Session &session, Reading &reading) const;

private:
    std::optional<std::string> fileOf(Sort sort) const;
    std::vector<int> devicesIn(const Session &session) const;

    std::string board_;  // as it was named; empty: it was not
    const CommandRow *row_ = nullptr;
    Reading reading_;
};

std::string commandsHelp();

}  // namespace sim

#endif
