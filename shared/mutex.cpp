#include "shared/mutex.h"

#include <cstring>

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
