#include "tests/faults/faulty_calls.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
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
int __real_open(const char *path, int flags, ...);
int __real_flock(int descriptor, int operation);
FILE *__real_fopen(const char *path, const char *mode);
int __real_ioctl(int descriptor, unsigned long request, ...);
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
constinit int faultCount = -1;  // the environment has not been read yet

void say(const char *line)
{
    if (::write(STDOUT_FILENO, line, std::strlen(line)) < 0)
        std::abort();
}

void readEnvironment()
{
    faultCount = 0;
    const char *text = std::getenv("SORVANE_FAULTS");
    while (text && *text && faultCount < mostFaults) {
        Fault &fault = faults[faultCount];
        if (std::sscanf(text, "%7s %u %7s %d", fault.call, &fault.number, fault.often, &fault.error) != 4)
            std::abort();
        ++faultCount;
        text = std::strchr(text, ';');
        text = text ? text + 1 : nullptr;
    }
}

/// Whether this call fails now; errno is set then. With `error` only a fault of that errno counts the call.
bool fails(const char *call, bool (*possible)(int error, const sembuf &first) = nullptr, const sembuf &first = {})
{
    if (faultCount < 0)
        readEnvironment();
    for (int k = 0; k < faultCount; ++k) {
        Fault &fault = faults[k];
        if (std::strcmp(fault.call, call) != 0 || (possible && !possible(fault.error, first)))
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

bool semopCanFail(int error, const sembuf &first)
{
    if (error == EINTR || error == EIDRM)
        return true;
    if (error == EAGAIN)
        return first.sem_op < 0 && (first.sem_flg & IPC_NOWAIT) != 0;
    if (error == ERANGE)
        return first.sem_op < 0 && first.sem_flg == 0;
    return first.sem_op <= 0;
}

constexpr int semaphores = 6;  // the registrations and the five mutexes that are used

struct Observation {
    unsigned int exchanges = 0;
    bool held[semaphores] = {};
    int registrations = -1;
};
constinit Observation observation = {};

void observe()
{
    ++observation.exchanges;
    const int id = __real_semget(__real_ftok("/tmp/Sem_R20Mutex", 1), 0, 0);
    observation.registrations = __real_semctl(id, 0, GETVAL);
    for (int k = 1; k < semaphores; ++k)
        observation.held[k] = observation.held[k] || __real_semctl(id, k, GETVAL) == 0;
}

// The request that failed last, in this operation.
constinit unsigned char failedRequest[56] = {};
constinit bool requestFailed = false;

/// Compares the caller's record as it is before the call: request, addresses and lengths.
void lookForRepetition(const void *record, bool failing)
{
    constexpr std::size_t bytes = sizeof(void *) == 8 ? sizeof failedRequest : 28;
    if (requestFailed && std::memcmp(failedRequest, record, bytes) == 0)
        say("! repeated\n");
    std::memcpy(failedRequest, record, bytes);
    requestFailed = failing;
}

}  // namespace

std::string takeObservation()
{
    std::string text = "exchanges " + std::to_string(observation.exchanges) + " held";
    for (int k = 1; k < semaphores; ++k)
        text += observation.held[k] ? " " + std::to_string(k - 1) : "";
    text += " registrations " + std::to_string(observation.registrations);
    observation = {};
    requestFailed = false;
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
    if (!fails("semop", tests::semopCanFail, operations[0]))
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
    return fails("shmctl") ? -1 : __real_shmctl(id, command, status);
}

int __wrap_open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return fails("open") ? -1 : __real_open(path, flags, mode);
}

int __wrap_flock(int descriptor, int operation)
{
    return fails("flock") ? -1 : __real_flock(descriptor, operation);
}

FILE *__wrap_fopen(const char *path, const char *mode)
{
    return fails("fopen") ? nullptr : __real_fopen(path, mode);
}

int __wrap_ioctl(int descriptor, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void *record = va_arg(arguments, void *);
    va_end(arguments);
    tests::observe();
    const bool failing = fails("ioctl");
    tests::lookForRepetition(record, failing);
    return failing ? -1 : __real_ioctl(descriptor, request, record);
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
