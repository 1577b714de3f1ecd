#include "tools/stop_signals.h"

#include <cstdio>
#include <poll.h>
#include <stdexcept>
#include <sys/signalfd.h>
#include <unistd.h>

namespace tools
{

StopSignals::StopSignals(std::initializer_list<int> more)
{
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        ::sigaddset(&signals, signal);
    for (const int signal : more)
        ::sigaddset(&signals, signal);
    ::sigprocmask(SIG_BLOCK, &signals, &before_);
    std::signal(SIGPIPE, SIG_IGN);
    fd_ = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (fd_ == -1)
        throw std::runtime_error("signals cannot be waited for: signalfd failed");
}

StopSignals::~StopSignals()
{
    (void)arrived();  // what has been heeded does not end the program afterwards
    ::close(fd_);
    ::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

bool StopSignals::arrived()
{
    return wait(std::chrono::milliseconds(0));
}

bool StopSignals::wait(std::chrono::milliseconds time, int descriptor)
{
    pollfd watched[] = {{fd_, POLLIN, 0}, {STDOUT_FILENO, 0, 0}, {descriptor, POLLIN, 0}};
    if (!arrived_)
        ::poll(watched, 3, static_cast<int>(time.count()));
    signalfd_siginfo taken;
    while (::read(fd_, &taken, sizeof taken) == sizeof taken)
        arrived_ = true;
    arrived_ = arrived_ || watched[1].revents & (POLLERR | POLLHUP) || std::ferror(stdout);
    return arrived_;
}

}  // namespace tools
