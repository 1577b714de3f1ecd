#include "tools/holders.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tools
{

namespace
{

namespace fs = std::filesystem;

/// What a path and an open descriptor have in common: the device of a device node, or the file.
struct Identity {
    dev_t device = 0;
    ino_t inode = 0;
    dev_t node = 0;

    static std::optional<Identity> of(const std::string &path)
    {
        struct stat status;
        if (::stat(path.c_str(), &status) != 0)
            return std::nullopt;
        if (S_ISCHR(status.st_mode))
            return Identity{0, 0, status.st_rdev};
        return Identity{status.st_dev, status.st_ino, 0};
    }
    bool operator==(const Identity &) const = default;
};

std::string contentsOf(const fs::path &path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The links alone are read, and only what leads to a node is looked at more closely: a descriptor may lead to a file
// system that does not answer.
bool isNodeLink(const fs::path &link)
{
    std::error_code ignored;
    return fs::read_symlink(link, ignored).string().find("Vexa_") != std::string::npos;
}

void addDescriptors(int process, const std::vector<std::optional<Identity>> &nodes, std::vector<Holders> &holders)
{
    std::error_code error;
    fs::directory_iterator descriptors("/proc/" + std::to_string(process) + "/fd", error);
    if (error && error != std::errc::no_such_file_or_directory) {
        for (Holders &each : holders)
            each.complete = false;
    }
    for (; !error && descriptors != fs::directory_iterator(); descriptors.increment(error)) {
        const auto identity = isNodeLink(*descriptors) ? Identity::of(descriptors->path()) : std::nullopt;
        for (std::size_t n = 0; identity && n < nodes.size(); ++n) {
            std::vector<Process> &found = holders[n].processes;
            if (nodes[n] == identity && (found.empty() || found.back().id != process))
                found.push_back(describe(process));
        }
    }
}

}  // namespace

std::string Process::text() const
{
    return std::to_string(id) + " (" + command + ", user " + user + ")";
}

std::string Holders::text() const
{
    std::string list;
    for (const Process &process : processes)
        list += (list.empty() ? "" : ", ") + process.text();
    return list;
}

std::string userName(uid_t id)
{
    const passwd *entry = ::getpwuid(id);
    return entry ? entry->pw_name : std::to_string(id);
}

Process describe(int process)
{
    const fs::path folder = "/proc/" + std::to_string(process);
    std::string command = contentsOf(folder / "cmdline");
    while (!command.empty() && command.back() == '\0')
        command.pop_back();
    std::replace_if(
        command.begin(), command.end(), [](char c) { return c >= 0 && c < ' '; }, ' ');
    if (command.empty()) {
        command = "[" + contentsOf(folder / "comm") + "]";
        std::erase(command, '\n');
    }
    struct stat status;
    std::string user = "unknown";
    if (::stat(folder.c_str(), &status) == 0)
        user = userName(status.st_uid);
    return {process, command, user};
}

std::vector<Holders> holdersOf(const std::vector<std::string> &paths)
{
    std::vector<std::optional<Identity>> nodes;
    std::transform(paths.begin(), paths.end(), std::back_inserter(nodes), Identity::of);
    std::vector<Holders> holders(paths.size());
    std::vector<int> processes;
    std::error_code ignored;
    for (const auto &entry : fs::directory_iterator("/proc", ignored)) {
        const int process = std::atoi(entry.path().filename().c_str());
        if (process > 0 && process != ::getpid())
            processes.push_back(process);
    }
    std::sort(processes.begin(), processes.end());
    for (const int process : processes)
        addDescriptors(process, nodes, holders);
    return holders;
}

}  // namespace tools
