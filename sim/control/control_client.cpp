#include "sim/control/control_client.h"

#include "sim/system/failure.h"

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

namespace sim
{

namespace
{

// Root comes as the run's user: a run in a user namespace of its own could not tell root from anybody.
class AsUser
{
public:
    explicit AsUser(uid_t user) : own_(::geteuid())
    {
        if (user != own_)
            checked(::seteuid(user), "taking the id of the run's user");
    }
    AsUser(const AsUser &) = delete;
    AsUser &operator=(const AsUser &) = delete;
    ~AsUser() { (void)!::seteuid(own_); }

private:
    uid_t own_;
};

OwnedFd connectionTo(const RunName &name)
{
    const AsUser user(name.user);
    OwnedFd connection = connectTo(name);
    if (!connection)
        fail("reaching the run " + name.id, std::string("if it has ended, start another with: ") + howToServe);
    if (userBehind(connection) != name.user)
        throw UsageError("the run " + name.id + " belongs to somebody else");
    return connection;
}

}  // namespace

ControlClient::ControlClient(const RunName &name) : id_(name.id), connection_(connectionTo(name)) {}

Outcome ControlClient::ask(const Request &request, const std::function<void(const std::string &text)> &hear)
{
    const auto listen = [&hear](const std::string &text) {
        if (hear)
            hear(text);
    };
    if (connection_.send(lineOf(request))) {
        while (const std::optional<std::string> line = connection_.receive()) {
            if (std::optional<Outcome> outcome = answerFrom(*line, listen))
                return *outcome;
        }
    }
    return {.status = 1, .error = "the run " + id_ + " has ended"};
}

int ControlClient::dieWithRun()
{
    const int fd = connection_.fd();
    checked(::fcntl(fd, F_SETOWN, ::getpid()), "watching the run");
    checked(::fcntl(fd, F_SETSIG, SIGKILL), "watching the run");
    checked(::fcntl(fd, F_SETFL, O_ASYNC), "watching the run");
    if (connection_.isClosed())
        throw UsageError("the run " + id_ + " has ended");
    return fd;
}

bool ControlClient::waitForEnd(std::chrono::milliseconds most)
{
    pollfd state{connection_.fd(), POLLRDHUP, 0};
    return ::poll(&state, 1, static_cast<int>(most.count())) > 0;
}

}  // namespace sim
