// A program that is hard to follow: threads, children and exec, all of them asking one board under a storm of signals.
//
//     trace_worker PROCESS THREADS ROUNDS [CHILD PROGRAM]...
//
// Every thread of every process switches outputs ROUNDS times; the pattern holds the process, the thread and the round,
// so that each exchange is one of a kind. After each third it asks for random bytes. A child is a process of its own
// number and group that executes PROGRAM. Fails where an exchange does.
#include "tests/support/driver_call.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

bool askByPacket(int node, unsigned char request, unsigned int pipe, const std::vector<unsigned char> &payload)
{
    Packet packet{pipe, pipe, static_cast<std::uint32_t>(payload.size() + 1), 64, {request}};
    std::copy(payload.begin(), payload.end(), packet.data + 1);
    return ::ioctl(node, packetNumber, &packet) == 0 && packet.data[1] == 0;
}

bool askByRecord(int node, unsigned char request, unsigned int pipe, const std::vector<unsigned char> &payload)
{
    std::int32_t status = -1;
    unsigned char in[256];
    unsigned long count = 0;
    Record record{&status, pipe - 1, payload.data(), payload.size(), in, &count, request};
    return ::ioctl(node, recordNumber, &record) == 0 && status == 0;
}

bool ask(int node, unsigned char request, unsigned int pipe, const std::vector<unsigned char> &payload)
{
    static const bool packets = std::getenv("PACKETS");
    return packets ? askByPacket(node, request, pipe, payload) : askByRecord(node, request, pipe, payload);
}

int openBoard()
{
    return ::open("/dev/Vexa_0", O_RDWR | O_CLOEXEC);
}

void drive(int process, int thread, int rounds)
{
    const int node = openBoard();
    for (int round = 0; round < rounds; ++round) {
        std::vector<unsigned char> pattern(10);
        pattern[0] = static_cast<unsigned char>(process);
        pattern[1] = static_cast<unsigned char>(thread);
        pattern[2] = static_cast<unsigned char>(round & 0xFF);
        pattern[3] = static_cast<unsigned char>(round >> 8);
        if (!ask(node, 77, 1, pattern) || (round % 3 == 0 && !ask(node, 68, 5, {})))
            std::_Exit(1);
    }
    ::close(node);
}

void beginStorm()
{
    struct sigaction nothing = {};
    nothing.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &nothing, nullptr);
    ::sigaction(SIGUSR1, &nothing, nullptr);
    const itimerval often{{0, 500}, {0, 500}};
    ::setitimer(ITIMER_REAL, &often, nullptr);
}

pid_t startChild(char **words, char *number, char *program)
{
    ::signal(SIGUSR1, SIG_IGN);  // until the child is ready for it
    const pid_t child = ::fork();
    if (child == 0) {
        ::setpgid(0, 0);
        // A thread that is not the first may execute a program as well; the process then becomes that program.
        std::thread([&] {
            ::execl(program, program, number, words[2], words[3], nullptr);
            std::_Exit(127);
        }).join();
    }
    return child;
}

}  // namespace

int main(int wordCount, char **words)
{
    if (std::atoi(words[1]) == 0 && !ask(openBoard(), 69, 5, {0, 0, 0, 0}))  // the random numbers are switched on
        return 1;
    std::vector<pid_t> children;
    for (int word = 4; word + 1 < wordCount; word += 2)
        children.push_back(startChild(words, words[word], words[word + 1]));
    beginStorm();
    const int count = std::atoi(words[2]);
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(count));
    for (int thread = 0; thread < count; ++thread)
        threads.emplace_back(drive, std::atoi(words[1]), thread, std::atoi(words[3]));
    int failures = 0;
    for (const pid_t child : children) {
        int status = 0;
        while (::waitpid(child, &status, WNOHANG) == 0) {
            ::kill(child, SIGUSR1);
            ::usleep(2000);
        }
        failures += status != 0;
    }
    for (std::thread &thread : threads)
        thread.join();
    return failures;
}
