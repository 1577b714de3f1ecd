#include "sim/command/background.h"

#include "sim/system/failure.h"

#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>

namespace sim
{

void Background::isUp(const std::string &text, bool keepsInput)
{
    for (const int standard : {0, 1, 2}) {
        if (standard != 0 || !keepsInput)
            redirectToNull(standard);
    }
    channel_.send(text);
    channel_.close();
}

Background goToBackground()
{
    std::pair<Channel, Channel> ends = Channel::pair();
    Channel &here = ends.first;
    Channel &there = ends.second;
    const pid_t child = checked(::fork(), "starting a process");
    if (child == 0) {
        here.close();
        ::setsid();
        return Background(std::move(there));
    }
    there.close();
    if (const std::optional<Channel::Message> up = here.receive()) {
        std::printf("%s\n", up->text.c_str());
        std::fflush(stdout);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ::_exit(WIFEXITED(status) ? WEXITSTATUS(status) : statusOfFailure);
}

}  // namespace sim
