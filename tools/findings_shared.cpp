#include "inspect/arena_report.h"
#include "tools/failure.h"
#include "tools/findings.h"
#include "tools/holders.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <unistd.h>

namespace tools
{

namespace
{

constexpr const char *howToStartAfresh =
    "end every program that uses the boards, then: sorvane doctor --reset-if-unused";

/// Whether a process is stopped, by a signal or by a debugger.
bool isStopped(int process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    std::getline(file, line);
    const std::size_t nameEnd = line.rfind(')');
    if (nameEnd == std::string::npos || nameEnd + 2 >= line.size())
        return false;
    const char state = line[nameEnd + 2];
    return state == 'T' || state == 't';
}

Finding stoppedHolder(const ArenaReport::Held &held)
{
    const std::string process = std::to_string(held.process);
    return {Weight::Problem, "lock",
            "process " + describe(held.process).text() + " is stopped while it holds lock " +
                std::to_string(held.mutex) + ": all others wait for it, for all boards",
            "let it go on (kill -CONT " + process + ") or end it (kill -KILL " + process + ")"};
}

void addLocks(const ArenaReport &arena, Findings &findings)
{
    for (const ArenaReport::Held &held : arena.held) {
        if (isStopped(held.process))
            findings.push_back(stoppedHolder(held));
    }
}

}  // namespace

Findings lookAtSharedState()
{
    const ArenaReport arena = reportArena();
    Findings findings;
    addLocks(arena, findings);
    for (const std::string &finding : arena.findings)
        findings.push_back({Weight::Problem, "arena", finding, howToStartAfresh});
    for (const std::string &remark : arena.remarks) {
        const bool isRegistration = remark.find("registrations without") != std::string::npos;
        findings.push_back({Weight::Remark, "arena",
                            remark + (isRegistration ? ": processes were killed, which does no harm" : ""),
                            howToStartAfresh});
    }
    if (arena.clean())
        findings.push_back({Weight::Fine, "arena", "no program uses the boards: no shared memory, no semaphores", ""});
    else if (arena.findings.empty())
        findings.push_back({Weight::Fine, "arena",
                            "shared memory and semaphores are in order; " + std::to_string(arena.registrations) +
                                " registrations, " + std::to_string(arena.attachedProcesses) + " processes attached",
                            ""});
    return findings;
}

namespace
{

constexpr unsigned short arenaMutex = 1;  // its semaphore

/// Keeps others from joining while it is there; undone where the set lives on.
bool takeArenaMutex(int setID)
{
    sembuf take = {arenaMutex, -1, SEM_UNDO | IPC_NOWAIT};
    return ::semop(setID, &take, 1) == 0;
}

/// Its maker died before anybody could register: nobody can be in it.
bool isUninitialised(int setID)
{
    semid_ds status;
    bool used = ::semctl(setID, 0, IPC_STAT, &status) != 0;
    for (int semaphore = 0; !used && semaphore < static_cast<int>(status.sem_nsems); ++semaphore)
        used = ::semctl(setID, semaphore, GETVAL) != 0;
    return !used;
}

[[noreturn]] void refuseToReset(const std::string &why)
{
    throw Refusal("nothing was removed: " + why, "Try: end every program that uses the boards first");
}

/// Processes that were the last at a semaphore and still live may be registered without being attached.
void refuseLiving(int setID)
{
    semid_ds status;
    if (::semctl(setID, 0, IPC_STAT, &status) != 0)
        throw Refusal(std::string("the semaphores cannot be looked at: ") + std::strerror(errno));
    for (int semaphore = 0; semaphore < static_cast<int>(status.sem_nsems); ++semaphore) {
        const int last = ::semctl(setID, semaphore, GETPID);
        if (last > 0 && last != ::getpid() && (::kill(last, 0) == 0 || errno != ESRCH))
            refuseToReset("process " + describe(last).text() + " has used the semaphores and lives");
    }
}

bool removeSegment(int segmentID)
{
    shmid_ds status;
    if (segmentID == -1 || ::shmctl(segmentID, IPC_STAT, &status) != 0)
        return false;
    if (status.shm_nattch != 0)
        refuseToReset(std::to_string(status.shm_nattch) + " processes are attached to the shared memory");
    if (::shmctl(segmentID, IPC_RMID, nullptr) != 0)
        throw Refusal(std::string("the shared memory cannot be removed: ") + std::strerror(errno),
                      "Try: as its owner or as root");
    return true;
}

}  // namespace

Findings resetIfUnused()
{
    const ArenaReport arena = reportArena();
    Findings findings;
    if (arena.attachments != 0)
        refuseToReset(std::to_string(arena.attachments) + " processes are attached to the shared memory");
    if (arena.setID != -1) {
        refuseLiving(arena.setID);
        if (!isUninitialised(arena.setID) && !takeArenaMutex(arena.setID))
            refuseToReset("the shared memory's lock cannot be had; a program may be starting");
        refuseLiving(arena.setID);  // who joined before the lock was had
    }
    // In this order, as the last program does it: who waits for the lock then starts with neither.
    if (removeSegment(arena.segmentID))
        findings.push_back({Weight::Fine, "arena", "the shared memory was removed", ""});
    if (arena.setID != -1) {
        if (::semctl(arena.setID, 0, IPC_RMID) != 0)
            throw Refusal(std::string("the semaphores cannot be removed: ") + std::strerror(errno),
                          "Try: as their owner or as root");
        findings.push_back({Weight::Fine, "arena",
                            "the semaphores were removed, with " + std::to_string(arena.registrations) +
                                " registrations of dead processes",
                            ""});
    }
    if (findings.empty())
        findings.push_back({Weight::Fine, "arena", "there was nothing to remove", ""});
    return findings;
}

}  // namespace tools
