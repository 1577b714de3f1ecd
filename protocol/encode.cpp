#include "protocol/encode.h"

#include "protocol/families.h"

#include <algorithm>
#include <stdexcept>

namespace protocol
{

namespace
{

using Payload = std::vector<unsigned char>;

std::uint32_t wireNumber(const Field &field, std::uint32_t number)
{
    if (!field.codes)
        return number / field.scale;
    for (Codes code = field.codes; code->meaning; ++code) {
        if (code->meaning == number)
            return code->wire;
    }
    throw std::invalid_argument(std::string(field.name) + " " + std::to_string(number) + " has no code");
}

void append(const Field &field, const Argument &argument, Payload &payload)
{
    if (field.kind != Kind::Number) {
        if (field.extent == Extent::Fixed && argument.bytes.size() != field.size)
            throw std::invalid_argument(std::string(field.name) + " has another size");
        payload.insert(payload.end(), argument.bytes.begin(), argument.bytes.end());
        return;
    }
    const std::uint32_t number = wireNumber(field, argument.number);
    for (unsigned int n = 0; n < field.size; ++n) {
        const unsigned int place = field.order == ByteOrder::HighFirst ? field.size - 1U - n : n;
        payload.push_back(static_cast<unsigned char>(number >> 8 * place));
    }
}

}  // namespace

const Operation *findOperation(Model model, std::string_view name, int port)
{
    for (const Family &family : families()) {
        for (const Operation &operation : family.operations) {
            const int pipe = port0Pipe.first + port;
            const bool onPort =
                !operation.portOn(pipe) || (operation.pipes.first <= pipe && pipe <= operation.pipes.last);
            if (name == operation.name && operation.models >> static_cast<int>(model) & 1 && onPort)
                return &operation;
        }
    }
    return nullptr;
}

std::vector<unsigned char> encode(const Operation &operation, std::initializer_list<Argument> arguments)
{
    Payload payload;
    for (const Field &field : operation.payload) {
        const auto argument = std::find_if(arguments.begin(), arguments.end(),
                                           [&field](const Argument &each) { return each.name == field.name; });
        if (argument == arguments.end())
            throw std::invalid_argument(std::string(operation.name) + " needs " + field.name);
        append(field, *argument, payload);
    }
    payload.insert(payload.end(), operation.choice.bytes.begin(), operation.choice.bytes.end());
    return payload;
}

}  // namespace protocol
