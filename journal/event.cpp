#include "journal/event.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace journal
{

namespace
{

constexpr const char *kindWords[kindCount] = {"exchange", "output",   "input",    "counter", "hopper",
                                              "reel",     "coin",     "received", "sent",    "eeprom",
                                              "sram",     "firmware", "plugged",  "fault"};
constexpr const char *aspectWords[] = {"", "paid", "stock", "jammed", "empty", "paying", "cctalk"};

std::span<const unsigned char> bytesOf(const std::string &text)
{
    return {reinterpret_cast<const unsigned char *>(text.data()), text.size()};
}

std::string withPart(const Event &event, const Names &names)
{
    const std::string name = names.part(event);
    const std::string number = std::to_string(event.part);
    return std::string(wordFor(event.kind)) + ' ' + (name.empty() ? number : name + " (" + number + ')');
}

std::string shortened(const std::string &bytes, std::size_t mostBytes)
{
    const std::string more = bytes.size() > mostBytes ? "... (" + std::to_string(bytes.size()) + " bytes)" : "";
    return (bytes.empty() ? "none" : hexadecimal(bytes.substr(0, mostBytes))) + more;
}

std::string hopperText(const Event &event)
{
    const std::string word = wordFor(event.aspect);
    if (event.aspect == Aspect::Paid || event.aspect == Aspect::Stock)
        return word + " = " + std::to_string(event.is);
    return (event.is ? "" : "not ") + word;
}

std::string serialText(const Event &event, const Names &names, std::size_t mostBytes)
{
    const std::string name = names.part(event);
    const std::string number = std::to_string(event.part);
    const protocol::Value value{"", protocol::Kind::Text, {}, event.bytes, ""};
    return "serial " + (name.empty() ? number : name + " (" + number + ')') + ' ' + wordFor(event.kind) + ' ' +
           protocol::textOf(value, mostBytes);
}

std::string memoryText(const Event &event, const Names &names, std::size_t mostBytes)
{
    return withPart(event, names) + " = " + shortened(event.bytes, mostBytes) + " (was " +
           shortened(event.before, mostBytes) + ')';
}

}  // namespace

const char *wordFor(Kind kind)
{
    return kindWords[static_cast<std::size_t>(kind)];
}

std::optional<Kind> kindFor(std::string_view word)
{
    const auto *const found = std::find(std::begin(kindWords), std::end(kindWords), word);
    if (found == std::end(kindWords))
        return std::nullopt;
    return static_cast<Kind>(found - std::begin(kindWords));
}

const char *wordFor(Aspect aspect)
{
    return aspectWords[static_cast<std::size_t>(aspect)];
}

bool hasPart(Kind kind)
{
    return kind != Kind::Exchange && kind != Kind::Firmware && kind != Kind::Plugged && kind != Kind::Fault;
}

protocol::Exchange exchangeOf(const Event &event)
{
    return {event.model,   event.request, event.pipe,          bytesOf(event.before),
            event.outcome, event.status,  bytesOf(event.bytes)};
}

std::string textOfOutput(std::uint32_t bits)
{
    const bool on = bits & inOnPattern;
    const bool off = bits & inOffPattern;
    std::string text = on && off ? "on" : on || off ? "flashing" : "off";
    if (bits & pulsedOn)
        text += ", pulsed on";
    if (bits & pulsedOff)
        text += ", pulsed off";
    if (bits & drivenByRelease)
        text += ", driven by a release";
    return text;
}

std::string hexadecimal(std::string_view bytes)
{
    std::string text;
    for (const char c : bytes) {
        std::array<char, 4> digits{};
        std::snprintf(digits.data(), digits.size(), "%02X", static_cast<unsigned int>(static_cast<unsigned char>(c)));
        text += (text.empty() ? "" : " ") + std::string(digits.data());
    }
    return text;
}

std::string textOf(const Event &event, const Names &names, std::size_t mostBytes)
{
    switch (event.kind) {
    case Kind::Exchange:
        return protocol::line(protocol::decode(exchangeOf(event)), mostBytes);
    case Kind::Output:
        return withPart(event, names) + ' ' + textOfOutput(event.is);
    case Kind::Input:
        return withPart(event, names) + ((event.is != 0) != names.activeLow(event) ? " on" : " off");
    case Kind::Counter:
        return withPart(event, names) + " = " + std::to_string(event.is);
    case Kind::Hopper:
        return withPart(event, names) + ' ' + hopperText(event);
    case Kind::Reel:
        return withPart(event, names) + (event.is ? " turning" : " still");
    case Kind::Coin:
        return withPart(event, names) + (event.is ? " in" : " rejected");
    case Kind::Received:
    case Kind::Sent:
        return serialText(event, names, mostBytes);
    case Kind::EEPROM:
    case Kind::SRAM:
        return memoryText(event, names, mostBytes);
    case Kind::Firmware:
        return event.is ? "firmware running" : "firmware missing";
    case Kind::Plugged:
        return event.is ? "plugged" : "unplugged";
    case Kind::Fault:
        return "fault " + event.bytes;
    }
    return "";
}

std::string lineOf(const Event &event, const Names &names, bool several)
{
    std::array<char, 32> seconds{};
    std::snprintf(seconds.data(), seconds.size(), "%12.6f", static_cast<double>(event.time.count()) / 1e9);
    std::string board = names.board(event.device);
    if (board.empty() && several)
        board = "Vexa_" + std::to_string(event.device);
    return seconds.data() + std::string("  ") + (board.empty() ? "" : board + "  ") + textOf(event, names);
}

}  // namespace journal
