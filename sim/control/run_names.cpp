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

// With the rest of an address it stays well within what the kernel takes.
constexpr std::size_t longestName = 60;

bool isName(const std::string &word)
{
    const auto fits = [](unsigned char c) { return std::isalnum(c) != 0 || c == '_' || c == '-'; };
    return word.size() <= longestName && std::isalpha(static_cast<unsigned char>(word[0])) != 0 &&
           std::all_of(word.begin(), word.end(), fits);
}

[[noreturn]] void refuseTakenName(const std::string &name)
{
    throw UsageError("there is a run \"" + name + "\" already; end it with: sorvane-sim stop " + name +
                     ", or give another --name");
}

bool isMine(const RunName &name)
{
    return name.user == ::geteuid();
}

const RunName *findRun(const std::vector<RunName> &runs, const std::string &which)
{
    const RunName *found = nullptr;
    for (const RunName &run : runs) {
        if ((run.id == which || run.name == which) && (!found || (isMine(run) && !isMine(*found))))
            found = &run;
    }
    return found;
}

}  // namespace

std::string RunName::text() const
{
    return std::string(prefix) + "/" + std::to_string(user) + "/" + id + (name.empty() ? "" : "/" + name);
}

std::optional<RunName> RunName::parse(const std::string &text)
{
    const TextWords parts = splitAt(text, '/');
    const auto isNumber = [](const std::string &part) { return !part.empty() && std::isdigit(part[0]); };
    const std::size_t size = parts.size();
    if (size < 3 || size > 4 || parts[0] != prefix || !isNumber(parts[1]) || !isNumber(parts[2]))
        return std::nullopt;
    return RunName{static_cast<uid_t>(std::strtoul(parts[1].c_str(), nullptr, 10)), parts[2],
                   size == 4 ? parts[3] : ""};
}

RunName newRunName(const std::string &name)
{
    const std::vector<RunName> others = allRuns();
    const std::string process = std::to_string(::getpid());
    RunName run{::geteuid(), process, name};
    // A process of another namespace may have the same id.
    const auto isTaken = [&run](const RunName &other) { return other.user == run.user && other.id == run.id; };
    for (int number = 2; std::any_of(others.begin(), others.end(), isTaken); ++number)
        run.id = process + "." + std::to_string(number);
    return run;
}

void checkRunName(const std::string &name)
{
    if (!isName(name))
        throw UsageError("--name \"" + name +
                         "\" is no name; allowed: a letter, then letters, digits, _ and -, at most " +
                         std::to_string(longestName));
    const std::vector<RunName> runs = allRuns();
    if (std::any_of(runs.begin(), runs.end(), [&name](const RunName &run) { return isMine(run) && run.name == name; }))
        refuseTakenName(name);
}

OwnedFd reserveName(const RunName &run)
{
    if (run.name.empty())
        return OwnedFd();
    OwnedFd guard(checked(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0), "making a socket"));
    const RunAddress address(std::string(prefix) + "-name/" + std::to_string(run.user) + "/" + run.name);
    if (::bind(guard.get(), address.get(), address.length) != 0)
        refuseTakenName(run.name);
    return guard;
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
    const RunAddress address(name.text());
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

std::vector<RunName> reachableRuns()
{
    std::vector<RunName> runs = allRuns();
    std::erase_if(runs, [](const RunName &run) {
        return (::geteuid() != 0 && !isMine(run)) || userBehind(connectTo(run)) != run.user;
    });
    return runs;
}

RunName chooseRun(const std::optional<std::string> &which)
{
    std::vector<RunName> runs = reachableRuns();
    const auto shown = [&runs] {
        TextWords names;
        for (const RunName &run : runs)
            names.push_back(run.shown());
        return join(names, ", ");
    };
    const std::string noneIsUp = std::string("no virtual boards of yours are up; start them with: ") + howToServe;
    if (which) {
        if (const RunName *run = findRun(runs, *which))
            return *run;
        throw UsageError("there is no run \"" + *which + "\"; " + (runs.empty() ? noneIsUp : "allowed: " + shown()));
    }
    if (std::getenv(preloadBoards))
        throw UsageError("each program of a run without device nodes has boards of its own, so nobody can tell from "
                         "inside whose are meant; say --run with the program's process id, or start the run with "
                         "--how node");
    if (const std::optional<std::string> around = findRunFromInside()) {
        if (const std::optional<RunName> name = RunName::parse(*around))
            return *name;
    }
    std::erase_if(runs, [](const RunName &run) { return !isMine(run); });
    if (runs.empty())
        throw UsageError(noneIsUp);
    if (runs.size() > 1)
        throw UsageError("which run? Say --run with one of: " + shown());
    return runs[0];
}

RunAddress::RunAddress(const std::string &text)
{
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path + 1, text.data(), std::min(text.size(), sizeof address.sun_path - 1));
    length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + text.size());
}

}  // namespace sim
