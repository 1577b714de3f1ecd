// The lines of the control protocol (docs/control_protocol.md): one JSON object each.
#ifndef SORVANE_SIM_CONTROL_PROTOCOL_H
#define SORVANE_SIM_CONTROL_PROTOCOL_H

#include "sim/language/commands.h"
#include "sim/system/descriptors.h"

#include <functional>

namespace sim
{

constexpr int protocolVersion = 1;

/// The largest memory in hexadecimal digits, and room for the rest.
constexpr std::size_t longestLine = 4U << 20;

struct Request {
    enum class Kind { Command, About, Stop };

    Kind kind = Kind::Command;
    TextWords words{};
    bool wantsData = false;
    std::optional<Bytes> content{};
    EventNumbers since{};
};

std::string lineOf(const Request &request);
/// Throws UsageError for what is no request of this version.
Request requestFrom(const std::string &line);

/// The last answer to a request, and what had happened when it came.
std::string lineOf(const Outcome &outcome, const EventNumbers &began = {});
/// One before it: an object in JSON, or text.
std::string lineOfMore(const std::string &text, bool isData);

/// Whoever asked hears texts as they come; data comes as a line of JSON. The result is the last answer, nothing when
/// this line is not it.
std::optional<Outcome> answerFrom(const std::string &line, const std::function<void(const std::string &text)> &hear);

/// Lines in both directions over a connection.
class LineConnection
{
public:
    explicit LineConnection(OwnedFd connection) : fd_(std::move(connection)) {}

    int fd() const { return fd_.get(); }
    bool send(const std::string &line) const;
    /// Waits; nothing when the other side has closed. Throws UsageError for a line that does not end.
    std::optional<std::string> receive();
    /// Whether the other side has closed.
    bool isClosed() const;

private:
    OwnedFd fd_;
    std::string received_;
};

}  // namespace sim

#endif
