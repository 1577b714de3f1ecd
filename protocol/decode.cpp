#include "protocol/decode.h"

#include "protocol/families.h"

#include <algorithm>

namespace protocol
{

namespace
{

using Bytes = std::span<const unsigned char>;
using Values = std::vector<Value>;

Value rawValue(std::string_view name, Bytes bytes)
{
    return {name, Kind::Bytes, {}, {bytes.begin(), bytes.end()}, {}};
}

/// How many bytes the field has, of `left` at most; more than that where it does not fit.
std::size_t sizeOf(const Field &field, const Values &before, std::size_t left)
{
    if (field.extent == Extent::Fixed)
        return std::size_t{field.times - 1U} * field.stride + field.size;
    if (field.extent == Extent::Rest)
        return left;
    const auto counter =
        std::find_if(before.begin(), before.end(), [&](const Value &v) { return v.name == field.counter; });
    if (counter == before.end())
        return left + 1;
    const std::size_t count = counter->numbers.front();
    return field.extent == Extent::BitsCounted ? (count + 7) / 8 : count;
}

std::optional<std::uint32_t> numberOf(const Field &field, Bytes bytes)
{
    std::uint32_t number = 0;
    for (std::size_t n = 0; n < field.size; ++n)
        number = number << 8 | bytes[field.order == ByteOrder::HighFirst ? n : field.size - 1U - n];
    if (!field.codes)
        return number * field.scale;
    for (Codes code = field.codes; code->meaning; ++code) {
        if (code->wire == number)
            return code->meaning;
    }
    return std::nullopt;
}

std::optional<Value> valueOf(const Field &field, Bytes bytes)
{
    Value value = {field.name, field.kind, {}, {}, field.unit};
    switch (field.kind) {
    case Kind::Number:
    case Kind::Numbers:
        for (std::size_t element = 0; element < field.times; ++element) {
            const std::optional<std::uint32_t> number = numberOf(field, bytes.subspan(element * field.stride));
            if (!number)
                return std::nullopt;
            value.numbers.push_back(*number);
        }
        break;
    case Kind::Bits:
        for (std::uint32_t bit = 0; bit < bytes.size() * 8; ++bit) {
            if (bytes[bit / 8] >> bit % 8 & 1)
                value.numbers.push_back(bit);
        }
        break;
    case Kind::Bytes:
    case Kind::Text:
        value.bytes.assign(bytes.begin(), bytes.end());
        break;
    }
    return value;
}

/// The fields of these bytes when they and what is known of them already, up to `covered`, are all that there is.
std::optional<Values> fieldsOf(std::initializer_list<Field> fields, Bytes bytes, std::size_t covered)
{
    Values values;
    std::size_t end = 0;
    for (const Field &field : fields) {
        const std::size_t place = field.follows ? end : field.place;
        if (place > bytes.size())
            return std::nullopt;
        const std::size_t size = sizeOf(field, values, bytes.size() - place);
        if (size > bytes.size() - place)
            return std::nullopt;
        std::optional<Value> value = valueOf(field, bytes.subspan(place, size));
        if (!value)
            return std::nullopt;
        values.push_back(std::move(*value));
        end = place + size;
        covered = std::max(covered, end);
    }
    return covered == bytes.size() ? std::optional(std::move(values)) : std::nullopt;
}

void addArguments(Decoded &decoded, const Exchange &exchange)
{
    const Operation *operation = decoded.operation;
    std::optional<Values> fields;
    if (operation) {
        if (const std::optional<std::uint32_t> port = operation->portOn(exchange.pipe))
            decoded.arguments.push_back({"port", Kind::Number, {*port}, {}, {}});
        const std::size_t chosen = operation->choice.bytes.size();
        fields = fieldsOf(operation->payload, exchange.payload, chosen ? operation->choice.place + chosen : 0);
    }
    if (fields)
        std::move(fields->begin(), fields->end(), std::back_inserter(decoded.arguments));
    else if (operation || !exchange.payload.empty())
        decoded.arguments.push_back(rawValue("payload", exchange.payload));
    decoded.asDescribed = fields.has_value();
}

void addResults(Decoded &decoded, const Exchange &exchange)
{
    std::optional<Values> fields;
    if (decoded.operation)
        fields = fieldsOf(decoded.operation->answer, exchange.answer, 0);
    if (fields)
        decoded.results = std::move(*fields);
    else if (decoded.operation || !exchange.answer.empty())
        decoded.results.push_back(rawValue("answer", exchange.answer));
    decoded.asDescribed &= fields.has_value();
}

std::string quoted(std::string_view text)
{
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

std::string hexadecimal(std::string_view bytes)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        if (!text.empty())
            text += ' ';
        text += digits[static_cast<unsigned char>(c) >> 4];
        text += digits[c & 0xF];
    }
    return text;
}

}  // namespace

Decoded decode(const Exchange &exchange)
{
    Decoded decoded;
    decoded.outcome = exchange.outcome;
    decoded.status = exchange.status;
    decoded.operation = findOperation(exchange.model, exchange.pipe, exchange.request, exchange.payload);
    decoded.name = decoded.operation
                       ? decoded.operation->name
                       : "request " + std::to_string(exchange.request) + " on pipe " + std::to_string(exchange.pipe);
    addArguments(decoded, exchange);
    if (exchange.outcome == Outcome::Success)
        addResults(decoded, exchange);
    return decoded;
}

bool isText(const Value &value)
{
    const auto isPrintable = [](char c) { return ' ' <= c && c <= '~'; };
    return value.kind == Kind::Text && std::all_of(value.bytes.begin(), value.bytes.end(), isPrintable);
}

std::string textOf(const Value &value, std::size_t mostBytes)
{
    if (value.kind == Kind::Bytes || value.kind == Kind::Text) {
        const std::string_view shown = std::string_view(value.bytes).substr(0, mostBytes);
        const std::string more =
            shown.size() < value.bytes.size() ? "... (" + std::to_string(value.bytes.size()) + " bytes)" : "";
        if (isText(value))
            return quoted(shown) + more;
        return value.bytes.empty() ? "none" : hexadecimal(shown) + more;
    }
    std::string text;
    for (const std::uint32_t number : value.numbers)
        text += (text.empty() ? "" : " ") + std::to_string(number) + std::string(value.unit);
    return text.empty() ? "none" : text;
}

std::string question(const Decoded &decoded, std::size_t mostBytes)
{
    std::string text = decoded.name + '(';
    for (const Value &argument : decoded.arguments) {
        if (&argument != &decoded.arguments.front())
            text += ", ";
        text += std::string(argument.name) + '=' + textOf(argument, mostBytes);
    }
    return text + ')';
}

std::string line(const Decoded &decoded, std::size_t mostBytes)
{
    std::string text = question(decoded, mostBytes) + " = ";
    if (decoded.outcome == Outcome::Failed)
        return text + "failed";
    if (decoded.outcome == Outcome::Refused)
        return text + "status " + std::to_string(decoded.status);
    if (decoded.results.empty())
        return text + "ok";
    for (const Value &result : decoded.results) {
        if (&result != &decoded.results.front())
            text += ", ";
        text += std::string(result.name) + ' ' + textOf(result, mostBytes);
    }
    return text;
}

}  // namespace protocol
