#include "tools/findings.h"
#include "tools/holders.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace tools
{

namespace
{

namespace fs = std::filesystem;

constexpr const char *keyFiles[] = {"/tmp/R20SharedMemory", "/tmp/Sem_R20Mutex"};
constexpr uid_t firstOrdinaryUser = 1000;

std::vector<std::string> configurationLines(const std::vector<std::string> &folders)
{
    std::vector<std::string> lines;
    for (const std::string &folder : folders) {
        std::error_code ignored;
        std::vector<fs::path> files;
        if (fs::is_regular_file(folder, ignored))
            files.emplace_back(folder);
        for (const auto &entry : fs::directory_iterator(folder, ignored))
            files.push_back(entry.path());
        for (const fs::path &file : files) {
            std::ifstream text(file);
            for (std::string line; std::getline(text, line);)
                lines.push_back(line);
        }
    }
    return lines;
}

/// Whether the files of /tmp are removed by their age: a line with the path /tmp whose sixth word is one.
bool isTmpCleaned(const std::vector<std::string> &lines)
{
    return std::any_of(lines.begin(), lines.end(), [](const std::string &line) {
        std::istringstream words(line);
        std::string type, path, mode, user, group, age;
        words >> type >> path >> mode >> user >> group >> age;
        return !type.empty() && type[0] != '#' && path == "/tmp" && !age.empty() && age != "-" && age[0] != '#';
    });
}

bool isExcepted(const std::vector<std::string> &lines, const std::string &file)
{
    return std::any_of(lines.begin(), lines.end(), [&file](const std::string &line) {
        std::istringstream words(line);
        std::string type, path;
        words >> type >> path;
        return (type == "x" || type == "X") && (path == file || path == "/tmp/*R20*");
    });
}

Finding lookAtFile(const std::string &file)
{
    struct stat status, folder;
    if (::lstat(file.c_str(), &status) != 0)
        return {Weight::Fine, "key file", file + " is not there yet: the first program makes it", ""};
    if (!S_ISREG(status.st_mode))
        return {Weight::Problem, "key file", file + " is no regular file: whoever made it is no program of the library",
                "remove it, and look who made it (user " + userName(status.st_uid) + ")"};
    if (::stat("/tmp", &folder) == 0 && folder.st_mode & S_IWOTH && !(folder.st_mode & S_ISVTX))
        return {Weight::Problem, "key file", "everybody may remove " + file + ", since /tmp has no sticky bit",
                "chmod +t /tmp"};
    if (status.st_uid != 0 && status.st_uid != ::geteuid())
        return {Weight::Remark, "key file",
                file + " belongs to " + userName(status.st_uid) +
                    ", who may remove it: programs that start then share nothing with those "
                    "that run",
                "let the game's user or root make it: with no program running, remove it and start the game"};
    return {Weight::Fine, "key file", file + " belongs to " + userName(status.st_uid), ""};
}

Findings lookAtCleaners()
{
    const auto lines = configurationLines({"/etc/tmpfiles.d", "/run/tmpfiles.d", "/usr/lib/tmpfiles.d"});
    const bool isCleaned = isTmpCleaned(lines);
    Findings findings;
    for (const std::string file : keyFiles) {
        if (isCleaned && !isExcepted(lines, file))
            findings.push_back({Weight::Problem, "key file",
                                "systemd-tmpfiles removes old files of /tmp, " + file + " too",
                                "write into /etc/tmpfiles.d/sorvane.conf: x " + file});
    }
    for (const char *cleaner : {"/etc/cron.daily/tmpreaper", "/etc/cron.daily/tmpwatch"}) {
        if (::access(cleaner, F_OK) == 0)
            findings.push_back({Weight::Remark, "key file", std::string(cleaner) + " removes old files of /tmp",
                                "let it leave out /tmp/R20SharedMemory and /tmp/Sem_R20Mutex"});
    }
    return findings;
}

/// By default the system removes a user's SysV objects when that user's last session ends.
bool areObjectsRemovedAtLogout()
{
    if (::access("/run/systemd/system", F_OK) != 0)
        return false;
    bool removed = true;
    for (const std::string &line : configurationLines(
             {"/usr/lib/systemd/logind.conf.d", "/etc/systemd/logind.conf", "/etc/systemd/logind.conf.d"})) {
        if (line.rfind("RemoveIPC=", 0) == 0)
            removed = line != "RemoveIPC=no" && line != "RemoveIPC=false" && line != "RemoveIPC=0";
    }
    return removed;
}

}  // namespace

Findings lookAtKeyFiles()
{
    Findings findings;
    for (const char *file : keyFiles)
        findings.push_back(lookAtFile(file));
    for (const Finding &finding : lookAtCleaners())
        findings.push_back(finding);
    struct stat status;
    const bool isOrdinary =
        ::stat(keyFiles[0], &status) == 0 ? status.st_uid >= firstOrdinaryUser : ::geteuid() >= firstOrdinaryUser;
    if (isOrdinary && areObjectsRemovedAtLogout())
        findings.push_back({Weight::Problem, "key file",
                            "when the user's last session ends, the system removes that user's shared memory and "
                            "semaphores under running programs (RemoveIPC)",
                            "write RemoveIPC=no into /etc/systemd/logind.conf, or run the game as a system user"});
    return findings;
}

}  // namespace tools
