// How the start of a run fails: with what was tried, on what, and the system's reason.
#ifndef SORVANE_SIM_NODES_FAILURE_H
#define SORVANE_SIM_NODES_FAILURE_H

#include <cerrno>
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

/// The result of a system call; throws when it is negative.
inline int checked(int result, const std::string &action)
{
    if (result < 0)
        fail(action);
    return result;
}

}  // namespace sim

#endif
