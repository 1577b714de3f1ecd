// The way back from words to bytes: the payload of an operation from its named arguments, as the tables lay it out.
//
//     const Operation *operation = findOperation(Model::R35, "SetClock");
//     encode(*operation, {{"time", 5}})     05 00 00 00
#ifndef SORVANE_PROTOCOL_ENCODE_H
#define SORVANE_PROTOCOL_ENCODE_H

#include "protocol/operation.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace protocol
{

/// A number as it is told, or the bytes of a byte string or a set of bits.
struct Argument {
    Argument(std::string_view itsName, std::uint32_t itsNumber) : name(itsName), number(itsNumber) {}
    Argument(std::string_view itsName, std::string itsBytes) : name(itsName), bytes(std::move(itsBytes)) {}

    std::string_view name;
    std::uint32_t number = 0;
    std::string bytes;
};

/// The model's row of this name; of those that differ by the serial port, that of `port`. Null: the model has none.
const Operation *findOperation(Model model, std::string_view name, int port = 0);

/// Every field of the payload takes the argument of its name. Throws std::invalid_argument where one is missing or has
/// no code, and where a string has another size than its field.
std::vector<unsigned char> encode(const Operation &operation, std::initializer_list<Argument> arguments);

}  // namespace protocol

#endif
