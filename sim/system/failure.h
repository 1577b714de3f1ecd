// How the start of a run fails: with what was tried, on what, the system's reason and, where there is one, the next
// step of whoever started it.
#ifndef SORVANE_SIM_SYSTEM_FAILURE_H
#define SORVANE_SIM_SYSTEM_FAILURE_H

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <system_error>

namespace sim
{

/// The status of a run that failed by itself, as timeout(1) and env(1) have it.
constexpr int statusOfFailure = 125;

[[noreturn]] inline void fail(const std::string &action)
{
    throw std::system_error(errno, std::generic_category(), action);
}

[[noreturn]] inline void fail(const std::string &action, const std::string &nextStep)
{
    throw std::runtime_error(action + ": " + std::strerror(errno) + "; " + nextStep);
}

/// The result of a system call; throws when it is negative.
inline int checked(int result, const std::string &action)
{
    if (result < 0)
        fail(action);
    return result;
}

/// The same for a call that a system may keep from some users and containers; a limit of 0 namespaces is ENOSPC.
inline int permitted(int result, const std::string &action)
{
    if (result < 0 && (errno == EPERM || errno == EACCES || errno == ENOSPC))
        fail(action, "run it as root, or allow user namespaces (sysctl user.max_user_namespaces, "
                     "kernel.unprivileged_userns_clone, kernel.apparmor_restrict_unprivileged_userns); a container "
                     "needs --cap-add SYS_ADMIN, under AppArmor also --security-opt apparmor=unconfined");
    return checked(result, action);
}

}  // namespace sim

#endif
