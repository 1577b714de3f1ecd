#include "shared/mutex.h"

#include <cerrno>
#include <cstring>
#include <sys/sem.h>

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
    for (Mutex **link = &MutexChain; *link; link = &(*link)->next) {
        if (*link != mutex)
            continue;
        *link = mutex->next;
        LinuxMutexSet::ReleaseLinuxMutex(static_cast<LinuxMutex *>(mutex));
        return;
    }
}

bool LinuxMutex::Add(int value) const
{
    if (semaphoreSetID == -1)
        return false;
    sembuf operation = {static_cast<unsigned short>(mutexID.number + 1U), static_cast<short>(value), SEM_UNDO};
    return semaphoreOperation(semaphoreSetID, &operation, 1);
}

bool LinuxMutex::Lock()
{
    bool locked = Add(-1);
    if (!locked && semaphoreSetID != -1 && setIsGone(errno)) {
        LinuxMutexSet *set = LinuxMutexSet::SearchForMutexSet(mutexID);
        semaphoreSetID = set ? set->Rejoin(semaphoreSetID) : -1;
        locked = Add(-1);
    }
    if (locked)
        tellAcquired(this);
    return locked;
}

bool LinuxMutex::UnLock()
{
    tellReleased(this);
    return Add(+1);
}
