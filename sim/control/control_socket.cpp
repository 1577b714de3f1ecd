#include "sim/control/control_socket.h"

#include "sim/language/commands.h"
#include "sim/system/failure.h"

#include <array>
#include <sys/socket.h>

namespace sim
{

namespace
{

constexpr std::size_t longestRequest = 65536;

void sendAll(const OwnedFd &connection, const std::string &text)
{
    for (std::size_t sent = 0; sent < text.size();) {
        const ssize_t now = ::send(connection.get(), text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (now <= 0)
            return;
        sent += static_cast<std::size_t>(now);
    }
}

// Everything up to the end that the other side makes of its sending.
std::string receiveAll(const OwnedFd &connection, std::size_t atMost)
{
    std::string text;
    std::array<char, 4096> part{};
    for (ssize_t size; (size = ::recv(connection.get(), part.data(), part.size(), 0)) > 0 && text.size() < atMost;)
        text.append(part.data(), static_cast<std::size_t>(size));
    return text;
}

ControlAnswer carryOut(VirtualBoards &boards, const cabinet::Cabinet &cabinet, const std::string &request)
{
    TextWords words = splitAt(request, '\0');
    words.pop_back();
    try {
        Session session{boards, cabinet};
        const Outcome outcome = Command::parse(words).carryOut(session);
        return {outcome.status, outcome.data.empty() ? outcome.text : outcome.data + "\n"};
    } catch (const UsageError &error) {
        return {statusOfUsageError, error.what()};
    } catch (const std::exception &error) {
        return {1, error.what()};
    }
}

// Root comes as the run's user: a run in a user namespace of its own could not tell root from anybody.
void becomeUserOf(const RunName &name)
{
    if (name.user != ::geteuid())
        checked(::seteuid(name.user), "taking the id of the run's user");
}

}  // namespace

ControlServer::ControlServer(VirtualBoards &boards, const cabinet::Cabinet &cabinet, const RunName &name)
    : boards_(boards), cabinet_(cabinet),
      socket_(checked(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "making a socket"))
{
    const RunAddress address(name);
    checked(::bind(socket_.get(), address.get(), address.length), "taking the name " + name.text());
    checked(::listen(socket_.get(), 16), "listening as " + name.text());
}

void ControlServer::answerAll()
{
    for (;;) {
        const OwnedFd connection(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!connection)
            continue;
        const std::optional<uid_t> user = userBehind(connection);
        if (user && (*user == ::geteuid() || *user == 0))
            answerOne(connection);
    }
}

void ControlServer::answerOne(const OwnedFd &connection)
{
    // Whoever asks and does not go on holds up the others no longer than this.
    ::setsockopt(connection.get(), SOL_SOCKET, SO_RCVTIMEO, &connectionTimeout, sizeof connectionTimeout);
    ::setsockopt(connection.get(), SOL_SOCKET, SO_SNDTIMEO, &connectionTimeout, sizeof connectionTimeout);
    const ControlAnswer answer = carryOut(boards_, cabinet_, receiveAll(connection, longestRequest));
    sendAll(connection, static_cast<char>('0' + answer.status) + answer.text);
}

ControlAnswer askRun(const RunName &name, const TextWords &words)
{
    becomeUserOf(name);
    const OwnedFd connection = connectTo(name);
    if (!connection)
        fail("reaching the run " + name.id, std::string("if it has ended, start another with: ") + howToServe);
    if (userBehind(connection) != name.user)
        throw UsageError("the run " + name.id + " belongs to somebody else");
    std::string request;
    for (const std::string &word : words)
        request += word + '\0';
    sendAll(connection, request);
    ::shutdown(connection.get(), SHUT_WR);
    const std::string answer = receiveAll(connection, SIZE_MAX);
    if (answer.empty())
        throw UsageError("the run " + name.id + " does not answer");
    return {answer[0] - '0', answer.substr(1)};
}

}  // namespace sim
