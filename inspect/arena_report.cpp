#include "inspect/arena_report.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr const char *segmentKeyFile = "/tmp/R20SharedMemory";
constexpr const char *setKeyFile = "/tmp/Sem_R20Mutex";
constexpr int semaphoreCount = 11;
constexpr int arenaMutex = 1;  // its semaphore

/// What was looked at is gone: it was removed meanwhile, and all that was seen is out of date.
struct Gone {
};

int orGone(int result)
{
    if (result == -1 && (errno == EIDRM || errno == EINVAL))
        throw Gone{};
    return result;
}

/// The key of an existing regular file; -1 without one.
key_t existingKey(const char *path, ArenaReport &report)
{
    struct stat status;
    if (::lstat(path, &status) != 0)
        return -1;
    if (!S_ISREG(status.st_mode))
        add(report.findings, "key file %s is not a regular file", path);
    return ::ftok(path, 1);
}

/// Holds the arena's mutex for a scope, if it comes free in time: nobody joins, and the last one does not leave.
class QuietArena
{
public:
    explicit QuietArena(int setID) : setId_(setID)
    {
        if (setID == -1 || ::semctl(setID, 0, GETVAL) <= 0)
            return;  // nobody is registered
        sembuf take = {arenaMutex, -1, SEM_UNDO};
        const timespec patience = {1, 0};
        int result;
        do
            result = orGone(::semtimedop(setID, &take, 1, &patience));
        while (result == -1 && errno == EINTR);
        held_ = result == 0;
        late_ = result == -1;
    }
    ~QuietArena()
    {
        sembuf give = {arenaMutex, +1, SEM_UNDO};
        while (held_ && ::semop(setId_, &give, 1) == -1 && errno == EINTR) {
        }
    }
    QuietArena(const QuietArena &) = delete;
    QuietArena &operator=(const QuietArena &) = delete;

    bool isHeld() const { return held_; }
    bool isLate() const { return late_; }

private:
    int setId_;
    bool held_ = false;
    bool late_ = false;
};

/// Whether whoever took a semaphore last has died with it: it did not change while that was looked up.
bool diedWith(int setID, int semaphore)
{
    const int last = ::semctl(setID, semaphore, GETPID);
    return last > 0 && ::kill(last, 0) == -1 && errno == ESRCH && ::semctl(setID, semaphore, GETVAL) == 0 &&
           ::semctl(setID, semaphore, GETPID) == last;
}

void lookAtSet(ArenaReport &report, const QuietArena &quiet)
{
    semid_ds status;
    if (orGone(::semctl(report.setID, 0, IPC_STAT, &status)) != 0 || status.sem_nsems != semaphoreCount)
        return add(report.findings, "set %d cannot be read or has another number of semaphores", report.setID);
    unsigned short values[semaphoreCount];
    if (orGone(::semctl(report.setID, 0, GETALL, values)) != 0)
        return add(report.findings, "set %d: its values cannot be read", report.setID);
    values[arenaMutex] = static_cast<unsigned short>(values[arenaMutex] + quiet.isHeld());
    report.registrations = values[0];
    unsigned int sum = values[0];
    for (int k = 1; k < semaphoreCount; ++k) {
        sum += values[k];
        if (values[k] > 1)
            add(report.findings, "mutex %d is %u: it can be held by several at once", k - 1, values[k]);
        if (values[k] == 0 && values[0] > 0)
            report.held.push_back({k - 1, ::semctl(report.setID, k, GETPID)});
        if (values[k] == 0 && values[0] > 0 && diedWith(report.setID, k))
            add(report.findings, "mutex %d is held, but the process that took it is gone", k - 1);
    }
    if (quiet.isLate())
        add(report.findings, "the arena's mutex does not come free: process %d took it",
            ::semctl(report.setID, arenaMutex, GETPID));
    if (sum == 0)
        add(report.remarks, "the set is not initialised: whoever made it died before");
    else if (values[0] == 0)
        add(report.remarks, "nobody is registered: the last one died before it removed the set");
}

void lookAtSegment(ArenaReport &report)
{
    shmid_ds status;
    if (orGone(::shmctl(report.segmentID, IPC_STAT, &status)) != 0)
        return add(report.findings, "segment %d cannot be read", report.segmentID);
    report.attachments = status.shm_nattch;
    if (status.shm_segsz != segmentBytes)
        return add(report.findings, "segment %d has %lu bytes", report.segmentID,
                   static_cast<unsigned long>(status.shm_segsz));
    void *address = ::shmat(report.segmentID, nullptr, SHM_RDONLY);
    if (address == reinterpret_cast<void *>(-1)) {
        orGone(-1);
        return add(report.findings, "segment %d cannot be attached", report.segmentID);
    }
    std::vector<unsigned char> bytes(segmentBytes);
    std::memcpy(bytes.data(), address, bytes.size());
    ::shmdt(address);
    lookAtContents(bytes, report);
}

bool isAttached(const std::filesystem::path &process, int segmentID)
{
    std::ifstream maps(process / "maps");
    const std::string inode = " " + std::to_string(segmentID) + " ";
    for (std::string line; std::getline(maps, line);)
        if (line.find("/SYSV") != std::string::npos && line.find(inode) != std::string::npos)
            return true;
    return false;
}

/// Nothing for a process that has ended.
std::optional<int> parentOf(int process)
{
    std::string line;
    std::ifstream status("/proc/" + std::to_string(process) + "/stat");
    if (!std::getline(status, line))
        return std::nullopt;
    const std::size_t nameEnd = line.rfind(')');
    int parent = 0;
    char state;
    if (nameEnd != std::string::npos)
        std::istringstream(line.substr(nameEnd + 1)) >> state >> parent;
    return parent;
}

/// A forked child shares its parent's registration; every other process that is attached has one of its own.
void lookAtProcesses(ArenaReport &report)
{
    std::set<int> attached;
    std::error_code ignored;
    for (const auto &entry : std::filesystem::directory_iterator("/proc", ignored)) {
        const int process = std::atoi(entry.path().filename().c_str());
        if (process > 0 && isAttached(entry.path(), report.segmentID))
            attached.insert(process);
    }
    report.attachedProcesses = static_cast<int>(attached.size());
    int owners = 0;
    for (int process : attached) {
        const std::optional<int> parent = parentOf(process);
        owners += parent && attached.count(*parent) == 0;
    }
    if (owners > report.registrations)
        add(report.findings, "%d processes are attached, but only %d registered", owners, report.registrations);
    if (owners < report.registrations)
        add(report.remarks, "%d registrations without an attached process", report.registrations - owners);
}

/// What carries the form of our keys and sizes, but not today's key. It may be another program's.
void lookForSecond(const char *table, const char *what, unsigned long size, key_t ownKey, ArenaReport &report)
{
    std::ifstream list(table);
    std::string line;
    std::getline(list, line);  // headings
    while (std::getline(list, line)) {
        long key = 0;
        int id = 0;
        unsigned long mode = 0, found = 0;
        std::istringstream(line) >> key >> id >> mode >> found;
        const auto bits = static_cast<std::uint32_t>(key);
        if (bits != static_cast<std::uint32_t>(ownKey) && found == size && bits >> 24 == 1)
            add(report.remarks, "%s %d has our form under another key (%08lx): a key file may have been replaced", what,
                id, static_cast<unsigned long>(bits));
    }
}

void look(ArenaReport &report)
{
    const key_t segmentKey = existingKey(segmentKeyFile, report), setKey = existingKey(setKeyFile, report);
    report.setID = setKey == -1 ? -1 : ::semget(setKey, 0, 0);
    const QuietArena quiet(report.setID);
    report.segmentID = segmentKey == -1 ? -1 : ::shmget(segmentKey, 0, 0);
    if (report.setID != -1)
        lookAtSet(report, quiet);
    if (report.segmentID != -1) {
        lookAtSegment(report);
        lookAtProcesses(report);
    }
    const bool registeredMeanwhile = !quiet.isHeld() && !quiet.isLate() && report.registrations > 0;
    if (registeredMeanwhile || (setKey != -1 && ::semget(setKey, 0, 0) != report.setID))
        throw Gone{};
    lookForSecond("/proc/sysvipc/shm", "segment", segmentBytes, segmentKey, report);
    lookForSecond("/proc/sysvipc/sem", "set", semaphoreCount, setKey, report);
}

}  // namespace

std::string ArenaReport::text() const
{
    std::string lines;
    for (const std::string &finding : findings)
        lines += finding + "\n";
    return lines;
}

ArenaReport reportArena()
{
    constexpr int mostTries = 100;
    for (int tries = 0; tries < mostTries; ++tries) {
        try {
            ArenaReport report;
            look(report);
            return report;
        } catch (const Gone &) {
        }
    }
    ArenaReport report;
    add(report.findings, "the set or the segment was removed and made again under each of %d looks", mostTries);
    return report;
}
