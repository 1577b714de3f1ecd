// A named set of mutexes: one SysV semaphore set, in which semaphore 0 counts the registrations of the processes that
// use it and semaphore n + 1 is mutex n.
//
// Processes come and go at any moment, and any of them may be killed between two instructions. What keeps the set
// whole is that a semop of several operations happens entirely or not at all:
//   - a new set has only zeros; one semop initialises it and registers its first process;
//   - in an initialised set one semop waits until mutex 0 is free and registers;
//   - the last process takes mutex 0 in one semop that succeeds only if no other is registered, and then removes the
//     set. Whoever waits for mutex 0 is woken by the removal and starts again. Its own registration stands until then,
//     so that the set never looks like a new one.
// The registrations carry no undo: a process that is killed leaves its own, and with it the set. When they have filled
// the counter, a process uses the set without one.
#ifndef SORVANE_SHARED_MUTEX_SET_H
#define SORVANE_SHARED_MUTEX_SET_H

#include "shared/mutex.h"

/// A mutex in a SysV semaphore set: semaphore number + 1, which is 1 while it is free. The system gives it back when
/// its holder ends.
class LinuxMutex final : public Mutex
{
public:
    LinuxMutex(const MutexID &id, int semaphoreSetID) : Mutex(id), semaphoreSetID(semaphoreSetID) {}

    /// Waits until the mutex is free. When the set has been removed behind this process's back, the set of that name
    /// is looked up once; without one, false from then on: the caller goes on without the lock.
    bool Lock() override;
    bool UnLock() override;

    LinuxMutex *nextInSet = nullptr;
    int semaphoreSetID;

private:
    bool Add(short value) const;
    bool AddAgain(short value) const;
    bool LockAgain();
};

class LinuxMutexSet
{
public:
    /// Opens or makes the set of that name and registers this process in it. Key and size come from this first ID, so
    /// every process must ask for the same mutex of a set first. A set of more than 249 mutexes cannot be made, since
    /// a semop carries at most 500 operations.
    explicit LinuxMutexSet(const MutexID &id);
    /// Gives up the registration; the last process removes the set.
    ~LinuxMutexSet();
    LinuxMutexSet(const LinuxMutexSet &) = delete;
    LinuxMutexSet &operator=(const LinuxMutexSet &) = delete;

    static LinuxMutex *GetMutex(const MutexID &id);
    static LinuxMutexSet *SearchForMutexSet(const MutexID &id);
    LinuxMutex *FindMutex(const MutexID &id);
    bool UnLinkMutex(LinuxMutex *mutex);
    static void ReleaseLinuxMutex(LinuxMutex *mutex);

    /// For a mutex that found the set goneID removed: the set that has its name now, with this process registered in
    /// it, or -1. No set is made: only a process that starts makes one.
    int Rejoin(int goneID);

    /// For a forked child, in which nobody gives a registration back: from now on it uses a set that it looks up anew
    /// without one.
    static void EnterForkedChild() { inForkedChild = true; }

    static LinuxMutexSet *MasterListStart;

    int semaphoreSetID = 0;  // -1: none could be had
    MutexID mutexID;
    LinuxMutex *mutexList = nullptr;
    LinuxMutexSet *next = nullptr;

private:
    enum class Missing { Make, Leave };
    int Join(Missing missing);
    void Leave() const;

    static bool inForkedChild;

    bool registered_ = false;
};

#endif
