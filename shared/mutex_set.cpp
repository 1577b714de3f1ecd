#include "shared/mutex_set.h"

#include "shared/key_file.h"
#include "shared/linked_list.h"
#include "shared/semaphore_set.h"
#include "shared/thread_sanitizer.h"

#include <cerrno>
#include <new>
#include <sys/ipc.h>
#include <sys/sem.h>

constinit LinuxMutexSet *LinuxMutexSet::MasterListStart = nullptr;
constinit bool LinuxMutexSet::inForkedChild = false;

namespace
{

/// Each try that fails means that another process made or removed the set in between.
constexpr int mostTries = 1000;

}  // namespace

inline bool LinuxMutex::Add(short value) const
{
    if (semaphoreSetID == -1)
        return false;
    sembuf operation = {static_cast<unsigned short>(firstMutexSemaphore + mutexID.number), value, SEM_UNDO};
    return ::semop(semaphoreSetID, &operation, 1) == 0;
}

bool LinuxMutex::AddAgain(short value) const
{
    while (semaphoreSetID != -1 && errno == EINTR)
        if (Add(value))
            return true;
    return false;
}

bool LinuxMutex::LockAgain()
{
    if (AddAgain(-1))
        return true;
    if (semaphoreSetID == -1 || !setIsGone(errno))
        return false;
    LinuxMutexSet *set = LinuxMutexSet::SearchForMutexSet(mutexID);
    semaphoreSetID = set ? set->Rejoin(semaphoreSetID) : -1;
    return Add(-1) || AddAgain(-1);
}

bool LinuxMutex::Lock()
{
    if (!Add(-1) && !LockAgain())
        return false;
    tellAcquired(this);
    return true;
}

bool LinuxMutex::UnLock()
{
    tellReleased(this);
    return Add(+1) || AddAgain(+1);
}

LinuxMutexSet::LinuxMutexSet(const MutexID &id) : mutexID(id)
{
    semaphoreSetID = Join(Missing::Make);
}

LinuxMutexSet::~LinuxMutexSet()
{
    if (semaphoreSetID != -1 && registered_)
        Leave();
}

int LinuxMutexSet::Join(Missing missing)
{
    registered_ = false;
    if (mutexID.count < 1 || mutexID.count >= mostSemaphores || mutexID.number < 0 || mutexID.number >= mostSemaphores)
        return -1;
    const int semaphores = mutexID.count + 1;
    const key_t key = keyOf("/tmp/Sem_", mutexID.name, mutexID.number + 1);
    if (key == -1)
        return -1;
    for (int tries = 0; tries < mostTries; ++tries) {
        int id = ::semget(key, semaphores, 0666);
        if (id == -1 && errno == ENOENT && missing == Missing::Make) {
            id = ::semget(key, semaphores, IPC_CREAT | IPC_EXCL | 0666);
            if (id == -1 && errno == EEXIST)
                continue;
        }
        if (id == -1)
            return -1;
        switch (joinSet(id, semaphores)) {
        case Joining::Done:
            registered_ = true;
            return id;
        case Joining::Full:
            return id;
        case Joining::Failed:
            return -1;
        case Joining::Again:
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
        if (::semctl(semaphoreSetID, registrationSemaphore, GETVAL) == 0) {
            ::semctl(semaphoreSetID, 0, IPC_RMID);
            return;
        }
    }
}

int LinuxMutexSet::Rejoin(int goneID)
{
    if (semaphoreSetID == goneID) {
        semaphoreSetID = Join(Missing::Leave);
        if (registered_ && inForkedChild)
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

Mutex *Mutex::GetLocalMutex(const MutexID &id)
{
    Mutex *mutex = FindMutex(id);
    if (!mutex) {
        mutex = LinuxMutexSet::GetMutex(id);
        if (!mutex)
            return nullptr;
        mutex->next = MutexChain;
        MutexChain = mutex;
    }
    ++mutex->localCount;
    return mutex;
}

void Mutex::ReleaseLocalMutex(Mutex *mutex)
{
    if (--mutex->localCount > 0)
        return;
    if (unlinkFrom(MutexChain, mutex))
        LinuxMutexSet::ReleaseLinuxMutex(static_cast<LinuxMutex *>(mutex));
}
