#include "shared/mutex.h"

#include <cstring>

#include "shared/linked_list.h"
#include "shared/mutex_set.h"
#include "shared/thread_sanitizer.h"

constinit Mutex *Mutex::MutexChain = nullptr;

bool MutexID::sameSet(const MutexID &other) const
{
    return std::strncmp(name, other.name, nameBytes) == 0;
}

bool MutexID::sameMutex(const MutexID &other) const
{
    return number == other.number && sameSet(other);
}

Mutex *Mutex::FindMutex(const MutexID &id)
{
    for (Mutex *mutex = MutexChain; mutex; mutex = mutex->next)
        if (mutex->mutexID.sameMutex(id))
            return mutex;
    return nullptr;
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

inline bool LinuxMutex::Add(short value) const
{
    if (semaphoreSetID == -1)
        return false;
    sembuf operation = {static_cast<unsigned short>(mutexID.number + 1), value, SEM_UNDO};
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
