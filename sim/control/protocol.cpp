#include "sim/control/protocol.h"

#include <array>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <sys/socket.h>

namespace sim
{

namespace
{

using Json = nlohmann::ordered_json;

// A word may be any bytes; what is no UTF-8 is told apart from nothing, and nothing breaks.
std::string textOf(const Json &json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

[[noreturn]] void refuseRequest(const std::string &what)
{
    throw UsageError(what + R"(; allowed is {"sorvane":1,"words":["state"]}, say)");
}

bool flag(const Json &request, const char *key)
{
    const auto found = request.find(key);
    if (found == request.end())
        return false;
    if (!found->is_boolean())
        refuseRequest(std::string("\"") + key + "\" is neither true nor false");
    return found->get<bool>();
}

// {"0":4711}
EventNumbers numbersFrom(const Json &since)
{
    EventNumbers numbers;
    for (const auto &[device, number] : since.items()) {
        if (!number.is_number_unsigned())
            refuseRequest("\"since\" has no number of an event for each board");
        const auto deviceNo = static_cast<int>(numberFrom(device, "a device number", 0, deviceCount - 1));
        numbers[deviceNo] = number.get<std::uint64_t>();
    }
    return numbers;
}

}  // namespace

std::string lineOf(const Request &request)
{
    Json json{{"sorvane", protocolVersion}};
    if (request.kind == Request::Kind::Command)
        json["words"] = request.words;
    else
        json[request.kind == Request::Kind::About ? "about" : "stop"] = true;
    if (request.wantsData)
        json["json"] = true;
    if (request.content)
        json["content"] = hexOf(*request.content);
    return textOf(json);
}

Request requestFrom(const std::string &line)
{
    const Json json = Json::parse(line, nullptr, false);
    if (!json.is_object() || !json.contains("sorvane"))
        refuseRequest("that is no request");
    if (json["sorvane"] != protocolVersion)
        refuseRequest("this run speaks version " + std::to_string(protocolVersion) + " of the protocol, not " +
                      textOf(json["sorvane"]));
    Request request;
    if (flag(json, "about"))
        request.kind = Request::Kind::About;
    else if (flag(json, "stop"))
        request.kind = Request::Kind::Stop;
    const auto words = json.find("words");
    if ((words != json.end()) != (request.kind == Request::Kind::Command))
        refuseRequest(R"(a request has either "words" or "about" or "stop")");
    if (words != json.end()) {
        const auto isText = [](const Json &word) { return word.is_string(); };
        if (!words->is_array() || !std::all_of(words->begin(), words->end(), isText))
            refuseRequest("the words are no list of texts");
        request.words = words->get<TextWords>();
    }
    request.wantsData = flag(json, "json");
    if (const auto content = json.find("content"); content != json.end()) {
        if (!content->is_string())
            refuseRequest("the content is no text of hexadecimal digits");
        request.content = bytesOfHex(content->get<std::string>());
    }
    if (const auto since = json.find("since"); since != json.end())
        request.since = numbersFrom(*since);
    return request;
}

std::string lineOf(const Outcome &outcome, const EventNumbers &began)
{
    std::string line = textOf({{"sorvane", protocolVersion}, {"status", outcome.status}});
    line.pop_back();
    if (!outcome.error.empty())
        line += ",\"error\":" + textOf(outcome.error);
    if (!outcome.text.empty())
        line += ",\"text\":" + textOf(outcome.text);
    if (!outcome.data.empty())
        line += ",\"data\":" + outcome.data;
    Json numbers;
    for (const auto &[device, number] : began)
        numbers[std::to_string(device)] = number;
    if (!began.empty())
        line += ",\"began\":" + textOf(numbers);
    return line + "}";
}

std::string lineOfMore(const std::string &text, bool isData)
{
    return isData ? "{\"event\":" + text + "}" : textOf({{"text", text}});
}

std::optional<Outcome> answerFrom(const std::string &line, const std::function<void(const std::string &text)> &hear)
{
    const Json json = Json::parse(line, nullptr, false);
    const auto textAt = [&json](const char *key) {
        const auto found = json.find(key);
        return found != json.end() && found->is_string() ? found->get<std::string>() : std::string();
    };
    if (!json.is_object())
        return Outcome{.status = 1, .error = "the run answers with what is no JSON"};
    if (json.contains("status"))
        return Outcome{.status = json["status"].is_number_integer() ? json["status"].get<int>() : 1,
                       .text = textAt("text"),
                       .data = json.contains("data") ? textOf(json["data"]) : "",
                       .error = textAt("error")};
    hear(json.contains("event") ? textOf(json["event"]) + "\n" : textAt("text"));
    return std::nullopt;
}

bool LineConnection::send(const std::string &line) const
{
    const std::string whole = line + "\n";
    for (std::size_t sent = 0; sent < whole.size();) {
        const ssize_t now = ::send(fd_.get(), whole.data() + sent, whole.size() - sent, MSG_NOSIGNAL);
        if (now <= 0)
            return false;
        sent += static_cast<std::size_t>(now);
    }
    return true;
}

std::optional<std::string> LineConnection::receive()
{
    std::array<char, 65536> part;
    std::size_t searched = 0;
    for (;;) {
        const std::size_t end = received_.find('\n', searched);
        if (end != std::string::npos) {
            std::string line = received_.substr(0, end);
            received_.erase(0, end + 1);
            return line;
        }
        if (received_.size() > longestLine)
            throw UsageError("a line of the protocol does not end; allowed are 4 MiB");
        searched = received_.size();
        const ssize_t size = ::recv(fd_.get(), part.data(), part.size(), 0);
        if (size <= 0)
            return std::nullopt;
        received_.append(part.data(), static_cast<std::size_t>(size));
    }
}

bool LineConnection::isClosed() const
{
    pollfd state{fd_.get(), POLLRDHUP, 0};
    return ::poll(&state, 1, 0) > 0;
}

}  // namespace sim
