#include "sim/control/run_names.h"

#include "sim/control/preload_environment.h"
#include "sim/language/words.h"
#include "sim/nodes/run_link.h"
#include "sim/system/failure.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sys/socket.h>
#include <unistd.h>

namespace sim
{

namespace
{

constexpr char prefix[] = "sorvane-sim";

bool isMine(const RunName &name)
{
    return ::geteuid() == 0 || name.user == ::geteuid();
}

}  // namespace

std::string RunName::text() const
{
    return std::string(prefix) + "/" + std::to_string(user) + "/" + id;
}

std::optional<RunName> RunName::parse(const std::string &text)
{
    const TextWords parts = splitAt(text, '/');
    const auto isNumber = [](const std::string &part) { return !part.empty() && std::isdigit(part[0]); };
    if (parts.size() != 3 || parts[0] != prefix || !isNumber(parts[1]) || !isNumber(parts[2]))
        return std::nullopt;
    return RunName{static_cast<uid_t>(std::strtoul(parts[1].c_str(), nullptr, 10)), parts[2]};
}

RunName newRunName()
{
    const std::vector<RunName> others = allRuns();
    const std::string process = std::to_string(::getpid());
    RunName name{::geteuid(), process};
    // A process of another namespace may have the same id.
    const auto isTaken = [&name](const RunName &other) { return other.text() == name.text(); };
    for (int number = 2; std::any_of(others.begin(), others.end(), isTaken); ++number)
        name.id = process + "." + std::to_string(number);
    return name;
}

std::vector<RunName> allRuns()
{
    std::vector<RunName> runs;
    std::ifstream sockets("/proc/net/unix");
    for (std::string line; std::getline(sockets, line);) {
        const TextWords columns = splitWords(line);
        // The flag of a listening socket; a connected one has the same name.
        if (columns.size() < 8 || columns[3] != "00010000" || columns[7][0] != '@')
            continue;
        if (const std::optional<RunName> run = RunName::parse(columns[7].substr(1)))
            runs.push_back(*run);
    }
    return runs;
}

OwnedFd connectTo(const RunName &name)
{
    OwnedFd connection(checked(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "making a socket"));
    // A listener that accepts nobody would keep whoever asks.
    ::setsockopt(connection.get(), SOL_SOCKET, SO_SNDTIMEO, &connectionTimeout, sizeof connectionTimeout);
    const RunAddress address(name);
    if (::connect(connection.get(), address.get(), address.length) != 0)
        return OwnedFd();
    return connection;
}

std::optional<uid_t> userBehind(const OwnedFd &connection)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    if (::getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return std::nullopt;
    return peer.uid;
}

RunName chooseRun(const std::optional<std::string> &id)
{
    std::vector<RunName> runs = allRuns();
    std::erase_if(runs, [](const RunName &run) { return !isMine(run) || userBehind(connectTo(run)) != run.user; });
    TextWords ids;
    for (const RunName &run : runs)
        ids.push_back(run.id);
    const std::string noneIsUp = std::string("no virtual boards of yours are up; start them with: ") + howToServe;
    if (id) {
        const auto found = std::find(ids.begin(), ids.end(), *id);
        if (found == ids.end())
            throw UsageError("there is no run \"" + *id + "\"; " +
                             (ids.empty() ? noneIsUp : "allowed: " + join(ids, ", ")));
        return runs[static_cast<std::size_t>(found - ids.begin())];
    }
    if (std::getenv(preloadBoards))
        throw UsageError("each program of a run without device nodes has boards of its own, so nobody can tell from "
                         "inside whose are meant; say --run with the program's process id, or start the run with "
                         "--how node");
    if (const std::optional<std::string> around = findRunFromInside()) {
        if (const std::optional<RunName> name = RunName::parse(*around))
            return *name;
    }
    if (runs.empty())
        throw UsageError(noneIsUp);
    if (runs.size() > 1)
        throw UsageError("which run? Say --run with one of: " + join(ids, ", "));
    return runs[0];
}

RunAddress::RunAddress(const RunName &name)
{
    const std::string text = name.text();
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path + 1, text.data(), std::min(text.size(), sizeof address.sun_path - 1));
    length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + text.size());
}

}  // namespace sim
