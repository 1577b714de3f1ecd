#include "tests/support/peer.h"

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tests
{

namespace
{

struct Pipe {
    Pipe()
    {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            throw std::runtime_error("pipe2");
        read = ends[0];
        write = ends[1];
    }
    int read;
    int write;
};

}  // namespace

Peer::Peer(const std::string &program, Start start)
{
    Pipe commands, answers, hold;
    process = ::fork();
    if (process == 0) {
        ::dup2(commands.read, 0);
        ::dup2(answers.write, 1);
        ::close(hold.write);
        char token;
        while (::read(hold.read, &token, 1) > 0) {  // ends when the gate is closed
        }
        ::execl(program.c_str(), program.c_str(), nullptr);
        ::_exit(127);
    }
    ::close(commands.read);
    ::close(answers.write);
    ::close(hold.read);
    toPeer = commands.write;
    fromPeer = answers.read;
    gate = hold.write;
    if (start == Start::now) {
        release();
        waitUntilReady();
    }
}

Peer::Peer(Peer &&other) noexcept
    : process(std::exchange(other.process, -1)), toPeer(std::exchange(other.toPeer, -1)),
      fromPeer(std::exchange(other.fromPeer, -1)), gate(std::exchange(other.gate, -1))
{
}

Peer::~Peer()
{
    if (process != -1)
        kill();
    for (int descriptor : {toPeer, fromPeer, gate})
        if (descriptor != -1)
            ::close(descriptor);
}

void Peer::release()
{
    ::close(std::exchange(gate, -1));
}

void Peer::waitUntilReady()
{
    const std::string line = answer();
    if (line != "ready")
        throw std::runtime_error("the peer did not start: " + line);
}

void Peer::tell(const std::string &line)
{
    const std::string text = line + "\n";
    if (::write(toPeer, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the peer is gone");
}

std::string Peer::answer()
{
    std::string line;
    char character;
    while (::read(fromPeer, &character, 1) == 1 && character != '\n')
        line += character;
    return line;
}

bool Peer::answers(int milliseconds) const
{
    pollfd waiting = {fromPeer, POLLIN, 0};
    return ::poll(&waiting, 1, milliseconds) == 1;
}

std::string Peer::ask(const std::string &line)
{
    tell(line);
    return answer();
}

bool Peer::wait()
{
    int status = -1;
    ::waitpid(std::exchange(process, -1), &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool Peer::quit()
{
    leave();
    return wait();
}

void Peer::kill()
{
    ::kill(process, SIGKILL);
    wait();
}

}  // namespace tests
