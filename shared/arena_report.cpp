#include "shared/arena_report.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
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
constexpr std::size_t segmentBytes = 65536;
constexpr std::size_t headerBytes = 128;
constexpr std::size_t blockBytes = 124;
constexpr std::uint32_t blocksInArena = 526;
constexpr int semaphoreCount = 11;
constexpr int devices = 16;

struct Object {
    const char *name;
    std::uint32_t blocks;
};
constexpr Object objects[ArenaReport::objectCount] = {
    {"OutOnCopies", 2}, {"OutOffCopies", 2}, {"R20EEPROMS", 3}, {"R20BUFFERS", 35}};

using Bytes = std::vector<unsigned char>;
using Lines = std::vector<std::string>;

[[gnu::format(printf, 2, 3)]] void add(Lines &lines, const char *format, ...)
{
    char line[200];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    lines.emplace_back(line);
}

std::uint32_t u32(const Bytes &bytes, std::size_t place)
{
    std::uint32_t value;
    std::memcpy(&value, bytes.data() + place, sizeof value);
    return value;
}

unsigned int u16(const Bytes &bytes, std::size_t place)
{
    return bytes[place] | bytes[place + 1] << 8;
}

std::string nameAt(const Bytes &bytes, std::size_t place)
{
    const char *name = reinterpret_cast<const char *>(bytes.data() + place);
    return std::string(name, ::strnlen(name, 50));
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

/// Holds the arena's mutex for a scope, if it comes free in time.
class QuietArena
{
public:
    explicit QuietArena(int setID) : setID(setID)
    {
        sembuf take = {1, -1, SEM_UNDO};
        const timespec patience = {1, 0};
        held = setID != -1 && ::semtimedop(setID, &take, 1, &patience) == 0;
    }
    ~QuietArena()
    {
        sembuf give = {1, +1, SEM_UNDO};
        if (held)
            ::semop(setID, &give, 1);
    }
    QuietArena(const QuietArena &) = delete;
    QuietArena &operator=(const QuietArena &) = delete;

    bool isHeld() const { return held; }

private:
    int setID;
    bool held;
};

Bytes copyOf(int segmentID)
{
    void *address = ::shmat(segmentID, nullptr, SHM_RDONLY);
    if (address == reinterpret_cast<void *>(-1))
        return {};
    Bytes bytes(segmentBytes);
    std::memcpy(bytes.data(), address, bytes.size());
    ::shmdt(address);
    return bytes;
}

void lookAtSet(ArenaReport &report)
{
    semid_ds status;
    if (::semctl(report.setID, 0, IPC_STAT, &status) != 0 || status.sem_nsems != semaphoreCount) {
        add(report.findings, "set %d cannot be read or has another number of semaphores", report.setID);
        return;
    }
    unsigned short values[semaphoreCount];
    if (::semctl(report.setID, 0, GETALL, values) != 0)
        return add(report.findings, "set %d: its values cannot be read", report.setID);
    report.registrations = values[0];
    unsigned int sum = values[0];
    for (int k = 1; k < semaphoreCount; ++k) {
        sum += values[k];
        if (values[k] > 1)
            add(report.findings, "mutex %d is %u: it can be held by several at once", k - 1, values[k]);
        const int last = ::semctl(report.setID, k, GETPID);
        if (values[k] == 0 && last > 0 && ::kill(last, 0) == -1 && errno == ESRCH)
            add(report.findings, "mutex %d is held, but process %d, which took it, is gone", k - 1, last);
    }
    if (sum == 0)
        add(report.remarks, "the set is not initialised: whoever made it died before");
    else if (values[0] == 0)
        add(report.remarks, "nobody is registered: the last one died before it removed the set");
}

void lookAtHeader(const Bytes &bytes, ArenaReport &report)
{
    const std::string name = nameAt(bytes, 0), mutex = nameAt(bytes, 56);
    if (name != "R20SharedMemory" || u32(bytes, 52) != 0)
        add(report.findings, "header: name \"%s\", id %u", name.c_str(), u32(bytes, 52));
    if (mutex != "R20Mutex" || u32(bytes, 108) != 10 || u32(bytes, 112) != 0)
        add(report.findings, "header: mutex \"%s\" number %u of %u", mutex.c_str(), u32(bytes, 112), u32(bytes, 108));
    if (u32(bytes, 116) != segmentBytes || u32(bytes, 120) != 1 || u32(bytes, 124) != blocksInArena)
        add(report.findings, "header: size %u, built %u times, %u blocks", u32(bytes, 116), u32(bytes, 120),
            u32(bytes, 124));
}

void lookAtEEPROMs(const Bytes &bytes, std::size_t data, ArenaReport &report)
{
    for (int device = 0; device < devices; ++device) {
        const std::size_t entry = data + 8 * static_cast<std::size_t>(device);
        const unsigned int highest = u16(bytes, entry + 2);
        if (bytes[entry + 6] > 1 || bytes[entry + 7] != 0)
            add(report.findings, "EEPROM of device %d: flag %u, reserved byte %u", device, bytes[entry + 6],
                bytes[entry + 7]);
        else if (bytes[entry + 6] == 1 && (bytes[entry] == 0 || highest == 0))
            add(report.findings, "EEPROM of device %d is marked as configured without a record", device);
    }
}

void lookAtBuffers(const Bytes &bytes, std::size_t data, ArenaReport &report)
{
    for (int device = 0; device < devices; ++device) {
        const std::size_t buffer = data + 260 * static_cast<std::size_t>(device);
        const unsigned int count = u16(bytes, buffer), index = u16(bytes, buffer + 2);
        if (count > 255 || index > count)
            add(report.findings, "receive buffer of device %d: %u of %u bytes handed out", device, index, count);
    }
}

void lookAtObject(const Bytes &bytes, std::size_t run, int object, ArenaReport &report)
{
    const char *name = objects[object].name;
    if (report.useCounts[object] != 0)
        return add(report.findings, "%s exists twice", name);
    report.useCounts[object] = u32(bytes, run + 116);
    if (u32(bytes, run + 120) != objects[object].blocks)
        add(report.findings, "%s has %u blocks", name, u32(bytes, run + 120));
    if (bytes[run + 56] != 0 || u32(bytes, run + 108) != 1 || u32(bytes, run + 112) != 0)
        add(report.findings, "%s: its mutex ID is not the empty one", name);
    if (object == 2)
        lookAtEEPROMs(bytes, run + blockBytes, report);
    if (object == 3)
        lookAtBuffers(bytes, run + blockBytes, report);
}

void lookAtRun(const Bytes &bytes, std::size_t run, ArenaReport &report)
{
    const std::string name = nameAt(bytes, run);
    const std::uint32_t useCount = u32(bytes, run + 116);
    if (name.empty() && useCount != 0)
        return add(report.remarks, "a run is used but has no name: whoever made it died before");
    if (name.empty())
        return;
    if (useCount == 0)
        return add(report.findings, "free run with the name \"%s\"", name.c_str());
    for (int object = 0; object < ArenaReport::objectCount; ++object)
        if (name == objects[object].name && u32(bytes, run + 52) == 0)
            return lookAtObject(bytes, run, object, report);
    add(report.findings, "unknown object \"%s\"", name.c_str());
}

void lookAtRuns(const Bytes &bytes, ArenaReport &report)
{
    std::uint32_t index = 0;
    while (index < blocksInArena) {
        const std::size_t run = headerBytes + blockBytes * index;
        const std::uint32_t length = u32(bytes, run + 120);
        if (length == 0 || length > blocksInArena - index)
            return add(report.findings, "the run at block %u has a length of %u", index, length);
        lookAtRun(bytes, run, report);
        index += length;
    }
    // Every process uses the objects in this order; one that is killed meanwhile has used the first ones only.
    for (int k = 1; k < ArenaReport::objectCount; ++k)
        if (report.useCounts[k] > report.useCounts[k - 1])
            add(report.findings, "%s has %u uses, %s only %u", objects[k].name, report.useCounts[k],
                objects[k - 1].name, report.useCounts[k - 1]);
}

void lookAtSegment(const Bytes &bytes, ArenaReport &report)
{
    if (bytes.empty())
        return add(report.findings, "segment %d cannot be attached", report.segmentID);
    if (u32(bytes, 124) == 0)
        return add(report.remarks, "the arena is not built: whoever made the segment died before");
    lookAtHeader(bytes, report);
    lookAtRuns(bytes, report);
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

int parentOf(const std::filesystem::path &process)
{
    std::string line;
    std::getline(std::ifstream(process / "stat"), line);
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
    for (int process : attached)
        owners += attached.count(parentOf("/proc/" + std::to_string(process))) == 0;
    if (owners > report.registrations)
        add(report.findings, "%d processes are attached, but only %d registered", owners, report.registrations);
    if (owners < report.registrations)
        add(report.remarks, "%d registrations without an attached process", report.registrations - owners);
}

/// What carries the form of our keys and sizes, but not today's key: its key file was replaced.
void lookForSecond(const char *table, const char *what, unsigned long size, int ownID, Lines &findings)
{
    std::ifstream list(table);
    std::string line;
    std::getline(list, line);  // headings
    while (std::getline(list, line)) {
        long key = 0;
        int id = 0;
        unsigned long mode = 0, found = 0;
        std::istringstream(line) >> key >> id >> mode >> found;
        if (id != ownID && found == size && (static_cast<std::uint32_t>(key) >> 24) == 1)
            add(findings, "%s %d has our form under another key (%08lx): a key file was replaced?", what, id,
                static_cast<unsigned long>(static_cast<std::uint32_t>(key)));
    }
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
    ArenaReport report;
    const key_t segmentKey = existingKey(segmentKeyFile, report), setKey = existingKey(setKeyFile, report);
    report.segmentID = segmentKey == -1 ? -1 : ::shmget(segmentKey, 0, 0);
    report.setID = setKey == -1 ? -1 : ::semget(setKey, 0, 0);
    if (report.setID != -1)
        lookAtSet(report);
    shmid_ds status;
    if (report.segmentID != -1 && ::shmctl(report.segmentID, IPC_STAT, &status) == 0) {
        report.attachments = status.shm_nattch;
        if (status.shm_segsz != segmentBytes) {
            add(report.findings, "segment %d has %lu bytes", report.segmentID,
                static_cast<unsigned long>(status.shm_segsz));
        } else {
            QuietArena quiet(report.setID);
            if (report.registrations > 0 && !quiet.isHeld())
                add(report.findings, "the arena's mutex does not come free: process %d took it",
                    ::semctl(report.setID, 1, GETPID));
            lookAtSegment(copyOf(report.segmentID), report);
        }
        lookAtProcesses(report);
    }
    lookForSecond("/proc/sysvipc/shm", "segment", segmentBytes, report.segmentID, report.findings);
    lookForSecond("/proc/sysvipc/sem", "set", semaphoreCount, report.setID, report.findings);
    return report;
}
