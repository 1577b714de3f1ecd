#include "shared/mutex_set.h"

#include <cerrno>
#include <new>
#include <sys/ipc.h>
#include <sys/sem.h>

#include "shared/key_file.h"
#include "shared/linked_list.h"

constinit LinuxMutexSet *LinuxMutexSet::MasterListStart = nullptr;
constinit bool LinuxMutexSet::inForkedChild = false;

namespace
{

constexpr unsigned short registrations = 0;
constexpr unsigned short firstMutex = 1;
constexpr int mostSemaphores = 250;

/// Each try that fails means that another process made or removed the set in between.
constexpr int mostTries = 1000;

enum class Outcome { done, full, again, failed };

Outcome outcomeOf(bool succeeded)
{
    if (succeeded)
        return Outcome::done;
    if (errno == ERANGE)
        return Outcome::full;
    return setIsGone(errno) ? Outcome::again : Outcome::failed;
}

/// Where all semaphores are 0 nobody has initialised the set, or whoever made it died before.
bool initialiseAndRegister(int id, int semaphores)
{
    sembuf operations[2 * mostSemaphores];
    for (int k = 0; k < semaphores; ++k) {
        const unsigned short semaphore = static_cast<unsigned short>(k);
        operations[k] = {semaphore, 0, IPC_NOWAIT};
        operations[semaphores + k] = {semaphore, +1, IPC_NOWAIT};
    }
    return semaphoreOperation(id, operations, 2U * static_cast<unsigned int>(semaphores));
}

/// Waits for the first mutex, which a process that removes the set holds, and leaves it free.
bool registerOnceFree(int id)
{
    sembuf operations[] = {{firstMutex, -1, 0}, {registrations, +1, 0}, {firstMutex, +1, 0}};
    return semaphoreOperation(id, operations, 3);
}

Outcome joinSet(int id, int semaphores)
{
    if (initialiseAndRegister(id, semaphores))
        return Outcome::done;
    if (errno != EAGAIN)
        return outcomeOf(false);
    return outcomeOf(registerOnceFree(id));
}

/// Succeeds only for the only process that is registered, and lets nobody in any more: it holds the first mutex.
bool lockAsLast(int id)
{
    sembuf operations[] = {{registrations, -1, IPC_NOWAIT},
                           {registrations, 0, IPC_NOWAIT},
                           {registrations, +1, IPC_NOWAIT},
                           {firstMutex, -1, SEM_UNDO}};
    return semaphoreOperation(id, operations, 4);
}

/// For the last process where the set is not its own to remove: leaves it as if others were still there.
void unlockAndUnregister(int id)
{
    sembuf operations[] = {{registrations, -1, IPC_NOWAIT}, {firstMutex, +1, SEM_UNDO}};
    semaphoreOperation(id, operations, 2);
}

/// Succeeds only while another process is registered.
bool unregisterBesideOthers(int id)
{
    sembuf operations[] = {{registrations, -2, IPC_NOWAIT}, {registrations, +1, IPC_NOWAIT}};
    return semaphoreOperation(id, operations, 2);
}

}  // namespace

bool setIsGone(int error)
{
    return error == EIDRM || error == EINVAL;
}

LinuxMutexSet::LinuxMutexSet(const MutexID &id) : mutexID(id)
{
    semaphoreSetID = Join(Missing::make);
}

LinuxMutexSet::~LinuxMutexSet()
{
    if (semaphoreSetID != -1 && registered)
        Leave();
}

int LinuxMutexSet::Join(Missing missing)
{
    registered = false;
    if (mutexID.count < 1 || mutexID.count >= mostSemaphores || mutexID.number < 0 || mutexID.number >= mostSemaphores)
        return -1;
    const int semaphores = mutexID.count + 1;
    const key_t key = keyOf("/tmp/Sem_", mutexID.name, mutexID.number + 1);
    if (key == -1)
        return -1;
    for (int tries = 0; tries < mostTries; ++tries) {
        int id = ::semget(key, semaphores, 0666);
        if (id == -1 && errno == ENOENT && missing == Missing::make) {
            id = ::semget(key, semaphores, IPC_CREAT | IPC_EXCL | 0666);
            if (id == -1 && errno == EEXIST)
                continue;
        }
        if (id == -1)
            return -1;
        switch (joinSet(id, semaphores)) {
        case Outcome::done:
            registered = true;
            return id;
        case Outcome::full:
            return id;
        case Outcome::failed:
            return -1;
        case Outcome::again:
            break;
        }
    }
    return -1;
}

void LinuxMutexSet::Leave() const
{
    for (int tries = 0; tries < mostTries; ++tries) {
        if (lockAsLast(semaphoreSetID)) {
            if (::semctl(semaphoreSetID, 0, IPC_RMID) == -1)
                unlockAndUnregister(semaphoreSetID);
            return;
        }
        if (errno != EAGAIN)
            return;
        if (unregisterBesideOthers(semaphoreSetID))
            return;
        if (errno != EAGAIN)
            return;
        // Another process left between the two attempts, or the count is 0 although this process is registered. A
        // count that cannot be read is not 0: somebody may live on the set.
        if (::semctl(semaphoreSetID, registrations, GETVAL) == 0) {
            ::semctl(semaphoreSetID, 0, IPC_RMID);
            return;
        }
    }
}

int LinuxMutexSet::Rejoin(int goneID)
{
    if (semaphoreSetID == goneID) {
        semaphoreSetID = Join(Missing::leave);
        if (registered && inForkedChild)
            Leave();
    }
    return semaphoreSetID;
}

LinuxMutexSet *LinuxMutexSet::SearchForMutexSet(const MutexID &id)
{
    for (LinuxMutexSet *set = MasterListStart; set; set = set->next)
        if (set->mutexID.sameSet(id))
            return set;
    return nullptr;
}

LinuxMutex *LinuxMutexSet::FindMutex(const MutexID &id)
{
    for (LinuxMutex *mutex = mutexList; mutex; mutex = mutex->nextInSet)
        if (mutex->mutexID.sameMutex(id))
            return mutex;
    return nullptr;
}

LinuxMutex *LinuxMutexSet::GetMutex(const MutexID &id)
{
    LinuxMutexSet *set = SearchForMutexSet(id);
    const bool newSet = !set;
    if (newSet)
        set = new (std::nothrow) LinuxMutexSet(id);
    if (!set)
        return nullptr;
    LinuxMutex *mutex = set->FindMutex(id);
    if (!mutex) {
        mutex = new (std::nothrow) LinuxMutex(id, set->semaphoreSetID);
        if (!mutex) {
            if (newSet)
                delete set;
            return nullptr;
        }
        mutex->nextInSet = set->mutexList;
        set->mutexList = mutex;
    }
    if (newSet) {
        set->next = MasterListStart;
        MasterListStart = set;
    }
    return mutex;
}

bool LinuxMutexSet::UnLinkMutex(LinuxMutex *mutex)
{
    return unlinkFrom(mutexList, mutex, &LinuxMutex::nextInSet);
}

void LinuxMutexSet::ReleaseLinuxMutex(LinuxMutex *mutex)
{
    LinuxMutexSet *set = SearchForMutexSet(mutex->mutexID);
    if (set)
        set->UnLinkMutex(mutex);
    delete mutex;
    if (!set || set->mutexList)
        return;
    unlinkFrom(MasterListStart, set);
    delete set;
}
