#include "journal/json_lines.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <iterator>
#include <nlohmann/json.hpp>

namespace journal
{

namespace
{

using Json = nlohmann::ordered_json;

constexpr const char *outputBits[] = {"on_period", "off_period", "release", "pulse_on", "pulse_off"};
constexpr const char *outcomes[] = {"success", "refused", "failed"};
constexpr const char *speeds[] = {"full", "high"};
constexpr const char *modelNames[] = {"R20", "R20s", "R35"};

std::string text(const Json &json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string hex(std::string_view bytes)
{
    std::string digits = hexadecimal(bytes);
    std::erase(digits, ' ');
    return digits;
}

std::string bytesFrom(const std::string &hex)
{
    const auto digit = [](char c) {
        const std::string_view digits = "0123456789ABCDEF0123456789abcdef";
        const std::size_t found = digits.find(c);
        if (found == std::string_view::npos)
            throw FormatError("\"" + std::string(1, c) + "\" is no hexadecimal digit");
        return found % 16;
    };
    if (hex.size() % 2 != 0)
        throw FormatError("a byte has two hexadecimal digits");
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        bytes += static_cast<char>(digit(hex[i]) << 4 | digit(hex[i + 1]));
    return bytes;
}

Json of(const protocol::Value &value)
{
    switch (value.kind) {
    case protocol::Kind::Number:
        return value.numbers.front();
    case protocol::Kind::Numbers:
    case protocol::Kind::Bits:
        return value.numbers;
    default:
        return protocol::isText(value) ? Json(value.bytes) : Json{{"hex", hex(value.bytes)}};
    }
}

Json of(const std::vector<protocol::Value> &values)
{
    Json object = Json::object();
    for (const protocol::Value &value : values)
        object[std::string(value.name)] = of(value);
    return object;
}

enum class Form { Numbers, Truths, Bits };

Form formOf(const Event &event)
{
    const bool counts = event.kind == Kind::Counter || event.aspect == Aspect::Paid || event.aspect == Aspect::Stock;
    return event.kind == Kind::Output ? Form::Bits : counts ? Form::Numbers : Form::Truths;
}

Json state(const Event &event, std::uint32_t value)
{
    if (formOf(event) == Form::Numbers)
        return value;
    if (formOf(event) == Form::Truths)
        return value != 0;
    Json words = Json::array();
    for (std::size_t bit = 0; bit < std::size(outputBits); ++bit) {
        if (value >> bit & 1)
            words.push_back(outputBits[bit]);
    }
    return words;
}

std::uint32_t stateFrom(const Event &event, const Json &json)
{
    if (formOf(event) == Form::Numbers)
        return json.get<std::uint32_t>();
    if (formOf(event) == Form::Truths)
        return json.get<bool>() ? 1 : 0;
    std::uint32_t bits = 0;
    for (const Json &word : json) {
        const auto *const found = std::find(std::begin(outputBits), std::end(outputBits), word.get<std::string>());
        if (found != std::end(outputBits))
            bits |= std::uint32_t{1} << (found - std::begin(outputBits));
    }
    return bits;
}

bool isMemory(Kind kind)
{
    return kind == Kind::EEPROM || kind == Kind::SRAM;
}

bool isState(Kind kind)
{
    return (kind >= Kind::Output && kind <= Kind::Reel) || kind == Kind::Firmware || kind == Kind::Plugged;
}

void addExchange(Json &json, const Event &event)
{
    const protocol::Decoded decoded = protocol::decode(exchangeOf(event));
    json["model"] = modelNames[static_cast<int>(event.model) - 1];
    json["pipe"] = event.pipe;
    json["request"] = event.request;
    json["payload"] = hex(event.before);
    json["outcome"] = outcomes[static_cast<std::size_t>(event.outcome)];
    if (event.status != 0)
        json["status"] = event.status;
    json["answer"] = hex(event.bytes);
    json["operation"] = decoded.name;
    json["arguments"] = of(decoded.arguments);
    json["results"] = of(decoded.results);
    if (event.process != 0)
        json["process"] = event.process;
    if (event.thread != 0)
        json["thread"] = event.thread;
    if (event.duration.count() != 0)
        json["duration"] = event.duration.count();
}

void addContents(Json &json, const Event &event)
{
    if (event.kind == Kind::Exchange)
        addExchange(json, event);
    else if (event.kind == Kind::Received || event.kind == Kind::Sent)
        json["bytes"] = hex(event.bytes);
    else if (event.kind == Kind::Fault)
        json["fault"] = event.bytes;
    else if (event.kind == Kind::Coin)
        json["accepted"] = event.is != 0;
    if (isState(event.kind)) {
        json["was"] = state(event, event.was);
        json["is"] = state(event, event.is);
    } else if (isMemory(event.kind)) {
        json["was"] = hex(event.before);
        json["is"] = hex(event.bytes);
    }
}

template <class Words>
std::size_t placeOf(const Words &words, const std::string &word)
{
    const auto found = std::find(std::begin(words), std::end(words), word);
    if (found == std::end(words))
        throw FormatError("unknown word \"" + word + "\"");
    return static_cast<std::size_t>(found - std::begin(words));
}

protocol::Model modelFrom(const Json &json)
{
    return static_cast<protocol::Model>(placeOf(modelNames, json.at("model")) + 1);
}

void readExchange(Event &event, const Json &json)
{
    event.model = modelFrom(json);
    event.pipe = json.at("pipe");
    event.request = json.at("request");
    event.before = bytesFrom(json.at("payload"));
    event.outcome = static_cast<protocol::Outcome>(placeOf(outcomes, json.at("outcome")));
    event.status = json.value("status", 0);
    event.bytes = bytesFrom(json.at("answer"));
    event.process = json.value("process", 0);
    event.thread = json.value("thread", 0);
    event.duration = std::chrono::nanoseconds(json.value("duration", std::int64_t{0}));
}

Aspect aspectFrom(const std::string &word)
{
    for (const Aspect aspect :
         {Aspect::Paid, Aspect::Stock, Aspect::Jammed, Aspect::Empty, Aspect::Paying, Aspect::CcTalk}) {
        if (word == wordFor(aspect))
            return aspect;
    }
    return Aspect::None;
}

void readContents(Event &event, const Json &json)
{
    if (event.kind == Kind::Exchange)
        readExchange(event, json);
    else if (event.kind == Kind::Received || event.kind == Kind::Sent)
        event.bytes = bytesFrom(json.at("bytes"));
    else if (event.kind == Kind::Fault)
        event.bytes = json.at("fault");
    else if (event.kind == Kind::Coin)
        event.is = json.at("accepted").get<bool>() ? 1 : 0;
    if (isState(event.kind)) {
        event.was = stateFrom(event, json.at("was"));
        event.is = stateFrom(event, json.at("is"));
    } else if (isMemory(event.kind)) {
        event.before = bytesFrom(json.at("was"));
        event.bytes = bytesFrom(json.at("is"));
    }
}

// Whatever is wrong with a line is told as the line's mistake.
template <class Body>
auto read(std::string_view line, Body body)
{
    try {
        return body(Json::parse(line));
    } catch (const Json::exception &error) {
        throw FormatError(std::string("not a line of a journal: ") + error.what());
    }
}

}  // namespace

std::string timeNow(std::chrono::nanoseconds ago)
{
    const auto now = std::chrono::system_clock::now().time_since_epoch() - ago;
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    const auto seconds = static_cast<std::time_t>(milliseconds / 1000);
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    std::array<char, 32> date{};
    std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &utc);
    std::array<char, 48> whole{};
    std::snprintf(whole.data(), whole.size(), "%s.%03dZ", date.data(), static_cast<int>(milliseconds % 1000));
    return whole.data();
}

std::string jsonOf(const Header &header)
{
    Json boards = Json::array();
    for (const HeaderBoard &board : header.boards)
        boards.push_back({{"device", board.device},
                          {"model", modelNames[static_cast<int>(board.model) - 1]},
                          {"speed", speeds[board.highSpeed ? 1 : 0]}});
    return text({{"journal", header.version},
                 {"by", header.by},
                 {"program", header.program},
                 {"start", header.start},
                 {"boards", boards}});
}

std::string jsonOf(const Event &event, const Names &names)
{
    Json json{{"device", event.device}, {"number", event.number}, {"time", event.time.count()}};
    if (const std::string board = names.board(event.device); !board.empty())
        json["board"] = board;
    json["kind"] = wordFor(event.kind);
    if (hasPart(event.kind))
        json["part"] = event.part;
    if (const std::string name = names.part(event); !name.empty())
        json["name"] = name;
    if (event.aspect != Aspect::None)
        json["aspect"] = wordFor(event.aspect);
    addContents(json, event);
    json["text"] = textOf(event, names);
    return text(json);
}

Header headerFrom(std::string_view line)
{
    return read(line, [](const Json &json) {
        Header header;
        header.version = json.at("journal");
        if (header.version != formatVersion)
            throw FormatError("version " + std::to_string(header.version) + " of the format; this program reads 1");
        header.by = json.value("by", "");
        header.program = json.value("program", std::vector<std::string>());
        header.start = json.value("start", "");
        for (const Json &board : json.value("boards", Json::array()))
            header.boards.push_back({board.at("device"), modelFrom(board), board.at("speed") == speeds[1]});
        return header;
    });
}

std::optional<Event> eventFrom(std::string_view line)
{
    return read(line, [](const Json &json) -> std::optional<Event> {
        if (json.contains("lost"))
            return std::nullopt;
        const std::optional<Kind> kind = kindFor(json.at("kind").get<std::string>());
        if (!kind)
            return std::nullopt;
        Event event;
        event.kind = *kind;
        event.number = json.at("number");
        event.time = std::chrono::nanoseconds(json.at("time").get<std::int64_t>());
        event.device = json.at("device");
        event.part = json.value("part", 0U);
        event.aspect = aspectFrom(json.value("aspect", ""));
        readContents(event, json);
        return event;
    });
}

}  // namespace journal
