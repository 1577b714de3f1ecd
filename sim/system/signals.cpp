#include "sim/system/signals.h"

#include <sys/types.h>
#include <unistd.h>

namespace sim
{

namespace
{

std::string takePending()
{
    sigset_t all;
    ::sigfillset(&all);
    const timespec atOnce{};
    std::string taken;
    for (int signal; (signal = ::sigtimedwait(&all, nullptr, &atOnce)) > 0;)
        taken.push_back(static_cast<char>(signal));
    return taken;
}

// The kernel may not have come round the whole group yet. A change of groups, even into the own one, waits for it.
void waitUntilGroupHasIt()
{
    ::setpgid(0, ::getpgrp());
}

void recordSignals(Channel channel)
{
    closeAllBut({channel.fd()});
    for (const int standard : {0, 1, 2})
        redirectToNull(standard);
    // A message has at least one byte: 0 stands for the end.
    while (channel.receive() && channel.send(takePending() + '\0')) {
    }
}

}  // namespace

BlockedSignals::BlockedSignals()
{
    sigset_t all;
    ::sigfillset(&all);
    ::sigprocmask(SIG_SETMASK, &all, &original_);
}

ProcessGroupMember::ProcessGroupMember() : process_(recordSignals) {}

bool ProcessGroupMember::alsoReceived(int signal)
{
    waitUntilGroupHasIt();
    if (process_.channel().send("?")) {
        if (const std::optional<Channel::Message> answer = process_.channel().receive())
            seen_.insert(answer->text.begin(), answer->text.end());
    }
    const auto found = seen_.find(signal);
    if (found == seen_.end())
        return false;
    seen_.erase(found);
    // Equal ones in quick succession may have become one here. None of them is to stand for one that comes later.
    waitUntilGroupHasIt();
    sigset_t pending;
    ::sigpending(&pending);
    if (::sigismember(&pending, signal) == 0)
        seen_.erase(signal);
    return true;
}

}  // namespace sim
