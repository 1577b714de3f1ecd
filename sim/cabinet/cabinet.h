// What a machine is and what its parts are called, as its cabinet file tells (docs/cabinet.md).
//
//     const cabinet::Cabinet cabinet = cabinet::Cabinet::read("fruit_machine.toml");
//     const cabinet::Place lamp = cabinet.find({cabinet::Kind::Output}, "win_lamp");
//
// It knows the boards' vocabulary and nothing of how they are driven, so that commands for virtual and for real boards
// read the same file.
#ifndef SORVANE_SIM_CABINET_CABINET_H
#define SORVANE_SIM_CABINET_CABINET_H

#include "sim/core/eeprom_chips.h"
#include "sim/core/model.h"

#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace cabinet
{

/// A coin is counted on an input or told by a ccTalk acceptor: two kinds, since their numbers are of two sorts. In a
/// file both stand under `coins`.
enum class Kind { Input, Output, Coin, CcTalkCoin, Hopper, Reel, Meter, Switch, Serial };

/// As it is called in commands: "input". Both kinds of coin are "coin".
const char *wordFor(Kind kind);

struct Part {
    Kind kind = Kind::Input;
    std::string name;  ///< empty for a serial port without one
    /// What names it to the board: the input, output, reel, switch or serial port, a coin's input or ccTalk type, the
    /// input that a hopper's coins pass, a meter's address in the EEPROM.
    unsigned int number = 0;
    int line = 0;  ///< of the file

    bool activeLow = false;              ///< an input
    std::string colour;                  ///< an output: a name or #RRGGBB; empty: not told
    std::optional<unsigned int> output;  ///< a hopper: its drive
    unsigned int stock = 0;              ///< a hopper: its coins at the start
    unsigned int bytes = 4;              ///< a meter: 1 to 8
    bool bigEndian = false;              ///< a meter
    std::string peripheral;              ///< a serial port: what hangs on it
};

struct Board {
    std::string name;  ///< may be empty where there is one board
    int device = 0;
    sim::Model model = sim::Model::R20;
    bool highSpeed = false;
    unsigned int number = 0;
    const sim::EEPROMChip *eeprom = sim::findEEPROMChip("24LC256");
    bool firmwareRunning = false;
    std::string eepromFile;  ///< that keeps the contents over runs; empty: none
    std::string sramFile;
    std::vector<Part> parts;  ///< by kind, those of a kind by name
    int line = 0;             ///< of the file
};

/// What a word of a command leads to.
struct Place {
    std::optional<int> device;   ///< absent: a number, and nobody said of which board
    unsigned int number = 0;     ///< of a name, its part's
    const Part *part = nullptr;  ///< null: a number that has no name
};

/// A file with mistakes, each a line `FILE:LINE: ...`, or a word that names nothing or too much. The text says what is
/// allowed.
class Error : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Whether it is a letter, then letters, digits, _ and -, and no word of the grammar.
bool isName(const std::string &word);

class Cabinet
{
public:
    /// No boards and no names.
    Cabinet() = default;
    /// Both throw Error with every mistake.
    static Cabinet read(const std::string &file);
    static Cabinet parse(const std::string &text, const std::string &file);

    /// The machine's; may be empty.
    const std::string &name() const { return name_; }
    const std::vector<Board> &boards() const { return boards_; }
    /// Null where the file has none with this device number.
    const Board *board(int device) const;

    /// The device number for a board's name; none for any other word.
    std::optional<int> deviceNamed(const std::string &board) const;

    /// A part of one of these kinds by number (decimal, or hexadecimal behind 0x; its range is the caller's to check),
    /// name or BOARD.name; `device` is the board that was said beside it, if one was. Throws Error for a name that is
    /// unknown, and for one that fits several parts unless they are one number of one board.
    Place find(const std::vector<Kind> &kinds, const std::string &word, std::optional<int> device = std::nullopt) const;

    /// The part with this number, null where it has no name.
    const Part *part(int device, Kind kind, unsigned int number) const;

private:
    std::string name_;
    std::vector<Board> boards_;
};

}  // namespace cabinet

#endif
