// What happened on one board: one thing an event, in order.
//
// Whatever a board is in, an output's pattern or a hopper's stock, changes by an event that holds what it was and what
// it is; so what was before follows from what is now and the events in between. An event holds numbers alone: names
// come from the cabinet when somebody reads it, and the operation of an exchange from protocol/.
#ifndef SORVANE_JOURNAL_EVENT_H
#define SORVANE_JOURNAL_EVENT_H

#include "protocol/decode.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace journal
{

enum class Kind : unsigned char {
    Exchange,
    Output,    ///< was, is: OutputBits
    Input,     ///< was, is: the level
    Counter,   ///< was, is: the count of a pulsed input
    Hopper,    ///< was, is: what `aspect` says
    Reel,      ///< was, is: whether it turns
    Coin,      ///< thrown in; is: whether it was accepted
    Received,  ///< a serial port got these bytes
    Sent,      ///< a serial port sent these bytes
    EEPROM,    ///< part: the address
    SRAM,      ///< part: the physical address
    Firmware,  ///< was, is: whether it runs
    Plugged,   ///< was, is: whether it is
    Fault      ///< something goes wrong on demand; bytes: in words
};
constexpr std::size_t kindCount = 14;

/// As it is called in commands and files: "output".
const char *wordFor(Kind kind);
std::optional<Kind> kindFor(std::string_view word);

/// What of its part an event is about, where a part is several things.
enum class Aspect : unsigned char {
    None,
    Paid,    ///< of a hopper: the coins since its last release
    Stock,   ///< of a hopper
    Jammed,  ///< of a hopper
    Empty,   ///< of a hopper
    Paying,  ///< of a hopper: a release is under way
    CcTalk   ///< of a coin: `part` is a type of the ccTalk acceptor, not an input
};

/// "paid"; empty for None.
const char *wordFor(Aspect aspect);

/// Whether events of this kind are about one part of the board.
bool hasPart(Kind kind);

enum OutputBits : std::uint32_t {
    inOnPattern = 1,
    inOffPattern = 2,
    drivenByRelease = 4,
    pulsedOn = 8,
    pulsedOff = 16
};

struct Event {
    std::uint64_t number = 0;            ///< from 1 on each board
    std::chrono::nanoseconds time = {};  ///< since the start
    int device = 0;
    Kind kind = Kind::Exchange;
    Aspect aspect = Aspect::None;
    std::uint32_t part = 0;  ///< the number of the output, input, coin, hopper's input, reel, serial port; an address
    std::uint32_t was = 0;
    std::uint32_t is = 0;
    std::string before;  ///< of a memory: its bytes before; of an exchange: the payload
    std::string bytes;   ///< of a memory: its bytes now; of an exchange: the answer; of a serial port: what travelled

    // Of an exchange alone.
    protocol::Model model = protocol::Model::R20;
    unsigned char request = 0;
    unsigned char pipe = 0;
    protocol::Outcome outcome = protocol::Outcome::Success;
    int status = 0;   ///< of a refusal the board's, of a failure the errno where it is known
    int process = 0;  ///< 0: not known
    int thread = 0;
    std::chrono::nanoseconds duration = {};  ///< of the driver call; 0: not known

    bool operator==(const Event &) const = default;
};

/// For protocol::decode(); it refers to the event.
protocol::Exchange exchangeOf(const Event &event);

/// What parts and boards are called; nobody need have a name.
struct Names {
    std::function<std::string(int device)> board = [](int) { return std::string(); };
    std::function<std::string(const Event &event)> part = [](const Event &) { return std::string(); };
    /// Whether an input is on at its low level.
    std::function<bool(const Event &event)> activeLow = [](const Event &) { return false; };
};

/// "output win_lamp (13) flashing", "GetClock() = time 1234": a line without its time. Of longer byte strings the first
/// `mostBytes` are told.
std::string textOf(const Event &event, const Names &names = {}, std::size_t mostBytes = 32);

/// "    1.204518  output 13 on": the line that people read. The board comes first where it has a name, or when
/// `several` says that there are others.
std::string lineOf(const Event &event, const Names &names = {}, bool several = false);

/// "on", "off", "flashing", with what drives it beside its patterns: "off, pulsed on".
std::string textOfOutput(std::uint32_t bits);

/// "2A 00".
std::string hexadecimal(std::string_view bytes);

}  // namespace journal

#endif
