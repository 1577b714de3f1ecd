// The names of the runs on this machine. A run listens on an abstract socket of its name, which the kernel forgets when
// the run ends, however it ends.
#ifndef SORVANE_SIM_CONTROL_RUN_NAMES_H
#define SORVANE_SIM_CONTROL_RUN_NAMES_H

#include "sim/system/descriptors.h"

#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/types.h>
#include <sys/un.h>
#include <vector>

namespace sim
{

struct RunName {
    uid_t user = 0;
    std::string id;  ///< begins with the process id of the run

    std::string text() const;
    static std::optional<RunName> parse(const std::string &text);
    pid_t process() const { return static_cast<pid_t>(std::stol(id)); }
};

/// What to do about it that no run is up.
constexpr char howToServe[] = "sorvane-sim serve --board 0=R35";

/// A name for a run of this process that nobody has.
RunName newRunName();

/// Every run that is up, whoever's it is.
std::vector<RunName> allRuns();

/// The run that is meant: the one with this id; without an id, the one around this process or the only one this user
/// may reach (root reaches everybody's). Throws UsageError that names the choice. Where boards are inside programs
/// there is no run around anybody, and the one that is found first would be the caller's shell: an id has to be given.
RunName chooseRun(const std::optional<std::string> &id);

/// Nobody waits longer for the other side of a connection.
constexpr timeval connectionTimeout{2, 0};

/// A connection with whoever listens under a name; none if nobody does. Anybody can take an abstract name, so the user
/// behind it has to be the one that it says.
OwnedFd connectTo(const RunName &name);
std::optional<uid_t> userBehind(const OwnedFd &connection);

/// The address of a name, and its length.
struct RunAddress {
    sockaddr_un address{};
    socklen_t length = 0;

    explicit RunAddress(const RunName &name);
    const sockaddr *get() const { return reinterpret_cast<const sockaddr *>(&address); }
};

}  // namespace sim

#endif
