// An exchange in words: which operation it was, what was asked and what came back.
//
//     Decoded d = decode({Model::R35, 85, 1, payload});
//     d.name                          "SetOutputBrightness"
//     d.arguments[0].name, .numbers   "level", {3}
//     line(d)                         "SetOutputBrightness(level=3) = ok"
//
// Any bytes may be given. Those that are not laid out as the description says, too few, too many, or with a code that
// stands for nothing, are told as one byte string named `payload` or `answer`; nothing is read past the end, and no
// byte is left out. It allocates: keep the exchange, and decode it when somebody wants to read it.
#ifndef SORVANE_PROTOCOL_DECODE_H
#define SORVANE_PROTOCOL_DECODE_H

#include "protocol/operation.h"

#include <span>
#include <string>
#include <vector>

namespace protocol
{

enum class Outcome {
    Success,
    Refused,  ///< board or driver gave a status other than 0
    Failed    ///< the driver call failed, nothing is known of the board
};

/// As it went over the driver, without the driver's own packing. The bytes belong to the caller.
struct Exchange {
    Model model;
    unsigned char request;
    int pipe;
    std::span<const unsigned char> payload = {};
    Outcome outcome = Outcome::Success;
    int status = 0;                              ///< of a refusal
    std::span<const unsigned char> answer = {};  ///< looked at after success only
};

/// One argument or result.
struct Value {
    std::string_view name;  ///< static storage
    Kind kind = Kind::Number;
    std::vector<std::uint32_t> numbers;  ///< one for number; those of the bits that are set for bits
    std::string bytes;                   ///< of bytes and text, whatever they are
    std::string_view unit;               ///< of the numbers; empty: the firmware's own

    bool operator==(const Value &) const = default;
};

struct Decoded {
    const Operation *operation = nullptr;  ///< its row; null where the model has no such request
    std::string name;                      ///< the operation's, or "request 200 on pipe 1"
    std::vector<Value> arguments;          ///< a serial port first, then the payload's fields
    Outcome outcome = Outcome::Success;
    int status = 0;
    std::vector<Value> results;  ///< the answer's fields; none unless it succeeded
    bool asDescribed = false;    ///< false: payload or answer is told as raw bytes
};

Decoded decode(const Exchange &exchange);

/// Whether it is text, all of it printable: what textOf puts in quotes.
bool isText(const Value &value);

/// The value alone: "3 7", "1500ms", "01 A5", "none"; text in quotes where all of it is printable, otherwise as bytes.
/// Of longer byte strings the first `mostBytes` are told, and how many there are.
std::string textOf(const Value &value, std::size_t mostBytes = ~std::size_t{0});

/// "GetClock()", "SetClock(time=5)": what is asked alone.
std::string question(const Decoded &decoded, std::size_t mostBytes = ~std::size_t{0});

/// "GetClock() = time 1234", "SetClock(time=5) = status 33", "GetClock() = failed": one line, printable characters.
std::string line(const Decoded &decoded, std::size_t mostBytes = ~std::size_t{0});

}  // namespace protocol

#endif
