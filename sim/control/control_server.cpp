#include "sim/control/control_server.h"

#include "sim/control/about.h"
#include "sim/system/failure.h"

#include <sys/socket.h>
#include <thread>

namespace sim
{

namespace
{

// Each has a thread, whose stack a 32-bit program has to find room for.
constexpr int mostConnections = 32;

constexpr int statusOfFailedCommand = 1;

// Whoever waits at the other end of a connection.
class RemoteListener : public Listener
{
public:
    RemoteListener(LineConnection &connection, bool hearsData) : connection_(connection), hearsData_(hearsData) {}

    bool tell(const std::string &text) override { return connection_.send(lineOfMore(text, hearsData_)); }
    bool isGone() override { return connection_.isClosed(); }
    int descriptor() override { return connection_.fd(); }

private:
    LineConnection &connection_;
    bool hearsData_;
};

}  // namespace

ControlServer::ControlServer(VirtualBoards &boards, const cabinet::Cabinet &cabinet, const RunName &name,
                             const TextWords &program, std::function<void()> stop)
    : boards_(boards), cabinet_(cabinet), about_(aboutRun(name, boards, cabinet, program)), stop_(std::move(stop)),
      socket_(checked(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "making a socket")),
      nameGuard_(reserveName(name))
{
    const RunAddress address(name.text());
    checked(::bind(socket_.get(), address.get(), address.length), "taking the name " + name.text());
    checked(::listen(socket_.get(), mostConnections), "listening as " + name.text());
}

void ControlServer::answerAll()
{
    for (;;) {
        OwnedFd connection(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!connection)
            continue;
        const std::optional<uid_t> user = userBehind(connection);
        if (user && (*user == ::geteuid() || *user == 0))
            answer(std::move(connection));
    }
}

void ControlServer::answer(OwnedFd connection)
{
    const auto refuse = [](const OwnedFd &refused, const std::string &reason) {
        ::setsockopt(refused.get(), SOL_SOCKET, SO_SNDTIMEO, &connectionTimeout, sizeof connectionTimeout);
        const std::string line = lineOf({.status = statusOfFailedCommand, .error = reason}) + "\n";
        (void)::send(refused.get(), line.data(), line.size(), MSG_NOSIGNAL);
    };
    if (++connections_ > mostConnections) {
        --connections_;
        refuse(connection, "others hold " + std::to_string(mostConnections) +
                               " connections to this run, which is all there are; close one first");
        return;
    }
    try {
        auto shared = std::make_shared<LineConnection>(std::move(connection));
        std::thread([this, shared] {
            answerAllOf(*shared);
            --connections_;
        }).detach();
    } catch (const std::system_error &) {
        --connections_;  // no thread to be had: the connection closes
    }
}

void ControlServer::answerAllOf(LineConnection &connection)
{
    try {
        while (const std::optional<std::string> line = connection.receive()) {
            Outcome outcome;
            EventNumbers began;
            try {
                const Request request = requestFrom(*line);
                if (request.kind == Request::Kind::Command)
                    began = eventsUpToNow(boards_);
                outcome = carryOut(request, connection);
            } catch (const UsageError &error) {
                outcome = {.status = statusOfUsageError, .error = error.what()};
            } catch (const std::exception &error) {
                outcome = {.status = statusOfFailedCommand, .error = error.what()};
            }
            if (!connection.send(lineOf(outcome, began)))
                return;
        }
    } catch (const std::exception &error) {
        (void)connection.send(lineOf({.status = statusOfUsageError, .error = error.what()}));
    }
}

Outcome ControlServer::carryOut(const Request &request, LineConnection &connection)
{
    switch (request.kind) {
    case Request::Kind::About:
        return {.data = about_};
    case Request::Kind::Stop:
        stop_();
        return {};
    case Request::Kind::Command:
        break;
    }
    Command command = Command::parse(request.words);
    if (request.content)
        command.setContent(*request.content);
    RemoteListener listener(connection, request.wantsData);
    Session session{boards_, cabinet_, request.wantsData, &listener, request.since};
    return command.carryOut(session);
}

}  // namespace sim
