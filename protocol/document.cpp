#include "protocol/document.h"

#include "protocol/families.h"

#include <utility>

namespace protocol
{

namespace
{

constexpr char introduction[] = R"(# What travels

Every exchange that the library makes with a board: one request and one answer. This page is written by
`scripts/wire_docs` from the tables in `protocol/`.

A request is a code, a pipe and a payload. Code and pipe together choose the operation, so the same code may mean two
things on two pipes. Pipe 1 serves inputs, outputs, coins, reels and the recorder; 2 the EEPROM and the 8051 version; 3
and 4 the serial ports 0 and 1; 5 clock, security, random numbers and identity; 6 SRAM and firmware; 7 SPI. An answer is
a status, 0 for success, and bytes. Opening a board sends what Download8051Software and CheckEEPROM send.

Places count from 0 behind the request code and, in an answer, behind the status. *High first* and *low first* say which
byte of a number comes first; in *bits*, bit n is bit n % 8 of byte n / 8, bit 0 the lowest of its byte. A range is what
the library sends, or what an answer can say; the meaning of a value of which nothing is told is the firmware's.
)";

std::string number(std::uint32_t value)
{
    return std::to_string(value);
}

std::string placeOf(const Field &field, const Field *before)
{
    const std::string from =
        field.follows ? "behind `" + std::string(before->name) + '`' : "from " + number(field.place);
    switch (field.extent) {
    case Extent::Rest:
        return from + ", all that follows";
    case Extent::Counted:
        return from + ", `" + field.counter + "` bytes";
    case Extent::BitsCounted:
        return from + ", `" + field.counter + "` / 8 bytes, rounded up";
    case Extent::Fixed:
        break;
    }
    std::string text;
    for (unsigned int element = 0; element < field.times; ++element) {
        const std::uint32_t first = field.place + element * field.stride;
        text += (text.empty() ? "" : "; ") + number(first);
        if (field.size > 1)
            text += " to " + number(first + field.size - 1);
    }
    return text;
}

std::string formOf(const Field &field)
{
    switch (field.kind) {
    case Kind::Number:
    case Kind::Numbers:
        return field.size == 1 ? "number" : field.order == ByteOrder::HighFirst ? "high first" : "low first";
    case Kind::Bits:
        return "bits";
    case Kind::Bytes:
        return "bytes";
    case Kind::Text:
        return "text or bytes";
    }
    return "";
}

std::string rangeOf(const Field &field)
{
    const bool isNumber = field.kind == Kind::Number || field.kind == Kind::Numbers;
    if (!isNumber || field.codes)
        return "";
    const std::string range = number(field.least) + " to " + number(field.most);
    return *field.unit ? range + ", each " + number(field.scale) + ' ' + field.unit : range;
}

/// "1200: 98 00" for each code, in the order of the bytes.
std::string codesOf(const Field &field)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (Codes code = field.codes; code && code->meaning; ++code) {
        text += (text.empty() ? " (" : ", ") + number(code->meaning) + ':';
        for (int byte = 0; byte < field.size; ++byte) {
            const std::uint32_t value = code->wire >> 8 * byte;
            text += {' ', digits[value >> 4 & 0xF], digits[value & 0xF]};
        }
    }
    return text.empty() ? text : text + ')';
}

std::string choiceRows(const Choice &choice)
{
    std::string rows;
    std::uint32_t place = choice.place;
    for (const unsigned char byte : choice.bytes)
        rows += "| " + number(place++) + " | | always " + number(byte) + " | | |\n";
    return rows;
}

std::string tableOf(std::initializer_list<Field> fields, const Choice &choice)
{
    std::string table = "| bytes | field | form | range | |\n|---|---|---|---|---|\n";
    std::string chosen = choiceRows(choice);
    const Field *before = nullptr;
    for (const Field &field : fields) {
        if (field.place > choice.place)
            table += std::exchange(chosen, "");
        table += "| " + placeOf(field, before) + " | `" + field.name + "` | " + formOf(field) + " | " + rangeOf(field) +
                 " | " + field.note + codesOf(field) + " |\n";
        before = &field;
    }
    return table + chosen;
}

std::string modelsOf(const Operation &operation)
{
    if (operation.models == onEveryModel)
        return "R20, R20s, R35";
    return operation.models == notOnR20 ? "R20s, R35" : operation.models == onR20 ? "R20" : "R35";
}

std::string sectionOf(const Operation &operation)
{
    std::string text = "\n### " + number(operation.request) + " on pipe " + std::to_string(operation.pipes.first);
    if (operation.pipes.last != operation.pipes.first)
        text += " or " + std::to_string(operation.pipes.last);
    text += std::string(": ") + operation.name + "\n\n" + modelsOf(operation) + '.';
    const char *separator = " Also sent by ";
    for (const char *sender : operation.senders)
        text += std::exchange(separator, ", ") + std::string(sender);
    text += operation.senders.size() ? ".\n\n" : "\n\n";
    text += operation.payload.size() ? "Payload:\n\n" + tableOf(operation.payload, operation.choice) : "No payload.\n";
    text +=
        operation.answer.size() ? "\nAnswer:\n\n" + tableOf(operation.answer, {}) : "\nThe answer is not looked at.\n";
    return text;
}

}  // namespace

std::string wireDocument()
{
    std::string text = introduction;
    for (const Family &family : families()) {
        text += "\n## " + std::string(family.title) + '\n';
        for (const Operation &operation : family.operations)
            text += sectionOf(operation);
    }
    return text;
}

}  // namespace protocol
