#include "tests/processes/peer.h"

#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tests
{

const char *ownWidth()
{
    return PEER_PROGRAM;
}

const char *otherWidth()
{
#ifdef OTHER_WIDTH_PEER
    return OTHER_WIDTH_PEER;
#else
    return PEER_PROGRAM;
#endif
}

const char *eitherWidth()
{
    static unsigned int asked = 0;
    return ++asked % 4 == 0 ? otherWidth() : ownWidth();
}

bool hasOtherWidth()
{
    return otherWidth() != std::string(ownWidth());
}

Peer::Peer(const std::string &program, Start start, int gate)
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        throw std::runtime_error("socketpair");
    process_ = ::fork();
    if (process_ == 0) {
        char released;
        ::dup2(ends[1], 0);
        ::dup2(ends[1], 1);
        if (gate != -1) {
            ::dup2(::dup(gate), 3);  // it stays open where the program starts
            ::setenv("PEER_GATE", "3", 1);
        }
        if (::read(0, &released, 1) == 1)
            ::execl(program.c_str(), program.c_str(), nullptr);
        ::_exit(127);
    }
    ::close(ends[1]);
    wire_ = ends[0];
    if (start == Start::Now)
        release();
    if (start == Start::Now && gate == -1)
        awaitReady();
}

Peer::Peer(Peer &&other) noexcept
    : process_(std::exchange(other.process_, -1)), wire_(std::exchange(other.wire_, -1)), ready_(other.ready_)
{
}

Peer::~Peer()
{
    if (process_ != -1)
        kill();
    if (wire_ != -1)
        ::close(wire_);
}

void Peer::awaitReady(int milliseconds)
{
    if (std::exchange(ready_, true))
        return;
    const std::string line = answer(milliseconds);
    if (line != "ready")
        throw std::runtime_error("the peer did not start: " + line);
}

void Peer::tell(const std::string &line)
{
    const std::string text = line + "\n";
    if (::send(wire_, text.data(), text.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the peer is gone");
}

std::string Peer::answer(int milliseconds)
{
    if (!answers(milliseconds))
        throw std::runtime_error("no answer within " + std::to_string(milliseconds) + " ms");
    std::string line;
    char character;
    while (::read(wire_, &character, 1) == 1 && character != '\n')
        line += character;
    return line;
}

bool Peer::answers(int milliseconds) const
{
    pollfd waiting = {wire_, POLLIN, 0};
    return ::poll(&waiting, 1, milliseconds) == 1;
}

std::string Peer::ask(const std::string &line, int milliseconds)
{
    tell(line);
    return answer(milliseconds);
}

bool Peer::wait()
{
    int status = -1;
    ::waitpid(std::exchange(process_, -1), &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool Peer::quit()
{
    leave();
    return wait();
}

void Peer::kill()
{
    ::kill(process_, SIGKILL);
    wait();
}

}  // namespace tests
