// What the library asks of a board and what comes back, as data: a row each kind of exchange.
//
// The description stands by itself: it shares nothing with the library and with the virtual boards, so that it tells
// what travelled even where one of them is wrong.
#ifndef SORVANE_PROTOCOL_OPERATION_H
#define SORVANE_PROTOCOL_OPERATION_H

#include "protocol/field.h"

#include <initializer_list>
#include <optional>
#include <string_view>

namespace protocol
{

/// With the numbers of GetBoardType.
enum class Model { R20 = 1, R20s = 2, R35 = 3 };

/// Bit n stands for the model of number n.
using Models = unsigned int;
constexpr Models onR20 = 1 << 1;
constexpr Models onR20s = 1 << 2;
constexpr Models onR35 = 1 << 3;
constexpr Models notOnR20 = onR20s | onR35;
constexpr Models onEveryModel = onR20 | notOnR20;

/// The pipes that serve a request: one, or both serial ones, where the pipe says the port.
struct Pipes {
    int first;
    int last;
};
constexpr Pipes ioPipe = {1, 1};
constexpr Pipes eepromPipe = {2, 2};
constexpr Pipes port0Pipe = {3, 3};
constexpr Pipes port1Pipe = {4, 4};
constexpr Pipes serialPipes = {3, 4};
constexpr Pipes clockPipe = {5, 5};
constexpr Pipes memoryPipe = {6, 6};
constexpr Pipes spiPipe = {7, 7};

/// Bytes of the payload that choose among the operations of one request. Where these are none the row takes what no
/// row before it has taken.
struct Choice {
    unsigned char place = 0;
    std::initializer_list<unsigned char> bytes = {};
};

struct Operation {
    unsigned char request;
    Pipes pipes;
    Models models;
    const char *name;
    std::initializer_list<Field> payload = {};
    std::initializer_list<Field> answer = {};  ///< without fields: nobody looks at it
    /// Other operations of the public class that send this exchange, with their own arguments or among others.
    std::initializer_list<const char *> senders = {};
    Choice choice = {};

    /// That of a serial request: 0 or 1.
    std::optional<std::uint32_t> portOn(int pipe) const
    {
        if (pipes.first != port0Pipe.first && pipes.first != port1Pipe.first)
            return std::nullopt;
        return pipe - port0Pipe.first;
    }

    /// Whether a call of that operation of the public class sends this exchange.
    bool isSentBy(std::string_view operation) const;
};

}  // namespace protocol

#endif
