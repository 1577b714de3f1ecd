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
    std::string id;    ///< begins with the process id of the run
    std::string name;  ///< what --name calls it; empty: nothing

    /// What people call it.
    const std::string &shown() const { return name.empty() ? id : name; }

    std::string text() const;
    static std::optional<RunName> parse(const std::string &text);
    pid_t process() const { return static_cast<pid_t>(std::stol(id)); }
};

/// What to do about it that no run is up.
constexpr char howToServe[] = "sorvane-sim serve --board 0=R35";

/// For a run of this process: an id that nobody has, and the name that was given, which may be empty.
RunName newRunName(const std::string &name);
/// Throws UsageError for what is no name and for one that another run of this user has.
void checkRunName(const std::string &name);
/// What holds the name for this user as long as it is open; nothing where there is no name. The kernel lets only one
/// have it; throws UsageError when another has.
OwnedFd reserveName(const RunName &run);

/// Every run that is up, whoever's it is.
std::vector<RunName> allRuns();

/// Those that really belong to whom their names say and that this user may reach: root everybody's.
std::vector<RunName> reachableRuns();

/// The run that is meant: the one with this name or id, the user's own before others; without one, the one around this
/// process or the user's only one, root's too. Throws UsageError that names the choice. Where boards are inside
/// programs there is no run around anybody, and the one that is found first would be the caller's shell: it has to be
/// named.
RunName chooseRun(const std::optional<std::string> &which);

/// Nobody waits longer for the other side of a connection.
constexpr timeval connectionTimeout{2, 0};

/// A connection with whoever listens under a name; none if nobody does. Anybody can take an abstract name, so the user
/// behind it has to be the one that it says.
OwnedFd connectTo(const RunName &name);
std::optional<uid_t> userBehind(const OwnedFd &connection);

/// An abstract address, and its length.
struct RunAddress {
    sockaddr_un address{};
    socklen_t length = 0;

    explicit RunAddress(const std::string &text);
    const sockaddr *get() const { return reinterpret_cast<const sockaddr *>(&address); }
};

}  // namespace sim

#endif
