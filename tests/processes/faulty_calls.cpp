#include "tests/processes/faulty_calls.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <unistd.h>

extern "C" {
key_t __real_ftok(const char *path, int project);
int __real_semget(key_t key, int count, int flags);
int __real_semop(int id, sembuf *operations, std::size_t count);
int __real_semctl(int id, int semaphore, int command, ...);
int __real_shmget(key_t key, std::size_t size, int flags);
void *__real_shmat(int id, const void *address, int flags);
int __real_shmctl(int id, int command, shmid_ds *status);
int __real_flock(int descriptor, int operation);
}

namespace tests
{

namespace
{

struct Fault {
    char call[8];
    unsigned int number;  // from 1
    char often[8];
    int error;
    unsigned int calls;
};

constexpr int mostFaults = 2;
constinit Fault faults[mostFaults] = {};
constinit int faultCount = -1;     // the environment has not been read yet
constinit bool observing = false;  // it is there, if empty

void say(const char *line)
{
    if (::write(STDOUT_FILENO, line, std::strlen(line)) < 0)
        std::abort();
}

void readEnvironment()
{
    faultCount = 0;
    const char *text = std::getenv("SORVANE_FAULTS");
    observing = text != nullptr;
    while (text && *text && faultCount < mostFaults) {
        Fault &fault = faults[faultCount];
        if (std::sscanf(text, "%7s %u %7s %d", fault.call, &fault.number, fault.often, &fault.error) != 4)
            std::abort();
        ++faultCount;
        text = std::strchr(text, ';');
        text = text ? text + 1 : nullptr;
    }
}

/// Whether this call fails now; errno is set then.
bool fails(const char *call)
{
    if (faultCount < 0)
        readEnvironment();
    for (int k = 0; k < faultCount; ++k) {
        Fault &fault = faults[k];
        if (std::strcmp(fault.call, call) != 0)
            continue;
        ++fault.calls;
        const bool ever = std::strcmp(fault.often, "ever") == 0;
        if (fault.calls != fault.number && !(ever && fault.calls > fault.number))
            continue;
        if (fault.calls == fault.number)
            say("! struck\n");
        errno = fault.error;
        return true;
    }
    return false;
}

constexpr int semaphores = 6;  // the registrations and the five mutexes that are used

struct Observation {
    unsigned int exchanges = 0;
    bool held[semaphores] = {};
    bool hasSegment = false;
    int registrations = -1;
};
constinit Observation observation = {};

void observe()
{
    ++observation.exchanges;
    const int id = __real_semget(__real_ftok("/tmp/Sem_R20Mutex", 1), 0, 0);
    observation.registrations = __real_semctl(id, 0, GETVAL);
    observation.hasSegment = __real_shmget(__real_ftok("/tmp/R20SharedMemory", 1), 0, 0) != -1;
    for (int k = 1; k < semaphores; ++k)
        observation.held[k] = observation.held[k] || __real_semctl(id, k, GETVAL) == 0;
}

// The call that failed last, in this operation: request, addresses and lengths.
constinit unsigned char failedCall[56] = {};
constinit std::size_t failedSize = 0;

bool isRepeated(const Exchange &exchange)
{
    return failedSize != 0 && std::memcmp(failedCall, exchange.call, failedSize) == 0;
}

}  // namespace

bool exchangeArrives(const Exchange &exchange)
{
    if (!observing)
        return true;
    observe();
    if (isRepeated(exchange))
        say("! repeated\n");
    const bool arrives = !fails("ioctl");
    failedSize = arrives ? 0 : std::min(exchange.callSize, sizeof failedCall);
    std::memcpy(failedCall, exchange.call, failedSize);
    return arrives;
}

bool callFails(const char *call)
{
    return fails(call);
}

std::string takeObservation()
{
    std::string text = "exchanges " + std::to_string(observation.exchanges) + " held";
    for (int k = 1; k < semaphores; ++k)
        text += observation.held[k] ? " " + std::to_string(k - 1) : "";
    text += observation.hasSegment ? "" : " no segment";
    text += " registrations " + std::to_string(observation.registrations);
    observation = {};
    failedSize = 0;
    return text;
}

}  // namespace tests

using tests::fails;

extern "C" {
key_t __wrap_ftok(const char *path, int project)
{
    if (project != 1)
        tests::say("a set that is nobody else's\n");  // not a line of a life, so a failure
    return fails("ftok") ? -1 : __real_ftok(path, project);
}

int __wrap_semget(key_t key, int count, int flags)
{
    return fails("semget") ? -1 : __real_semget(key, count, flags);
}

int __wrap_semop(int id, sembuf *operations, std::size_t count)
{
    const sembuf &first = operations[0];
    const bool leaves = first.sem_op < 0 && (first.sem_flg & IPC_NOWAIT) != 0;
    const bool registers = first.sem_op < 0 && first.sem_flg == 0;
    if (!fails("semop") && !(first.sem_op <= 0 && fails("take")) && !(leaves && fails("leave")) &&
        !(registers && fails("join")))
        return __real_semop(id, operations, count);
    if (errno == EIDRM) {
        __real_semctl(id, 0, IPC_RMID);
        errno = EIDRM;
    }
    return -1;
}

int __wrap_semctl(int id, int semaphore, int command, ...)
{
    return fails("semctl") ? -1 : __real_semctl(id, semaphore, command);
}

int __wrap_shmget(key_t key, std::size_t size, int flags)
{
    return fails("shmget") ? -1 : __real_shmget(key, size, flags);
}

void *__wrap_shmat(int id, const void *address, int flags)
{
    if (!fails("shmat"))
        return __real_shmat(id, address, flags);
    if (const int error = errno; error == EIDRM || error == EINVAL) {
        __real_shmctl(id, IPC_RMID, nullptr);
        errno = error;
    }
    return reinterpret_cast<void *>(-1);
}

int __wrap_shmctl(int id, int command, shmid_ds *status)
{
    if (!fails("shmctl"))
        return __real_shmctl(id, command, status);
    if (errno != EIDRM)
        return -1;
    __real_shmctl(id, IPC_RMID, nullptr);
    return __real_shmctl(id, command, status);
}

int __wrap_flock(int descriptor, int operation)
{
    return fails("flock") ? -1 : __real_flock(descriptor, operation);
}
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    if (fails("new"))
        return nullptr;
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}
