// What processes do to a SysV semaphore set as they come and go, each in one semop, so that it happens entirely or not
// at all.
#ifndef SORVANE_SHARED_SEMAPHORE_SET_H
#define SORVANE_SHARED_SEMAPHORE_SET_H

constexpr unsigned short registrationSemaphore = 0;
constexpr unsigned short firstMutexSemaphore = 1;
constexpr int mostSemaphores = 250;

/// Whether a failed semop says that the set does not exist any more.
bool setIsGone(int error);

enum class Joining {
    Done,
    Full,   // the counter of registrations is
    Again,  // the set was removed meanwhile
    Failed,
};
/// Registers this process, and initialises a set that nobody has. Waits while the first mutex is held.
Joining joinSet(int setID, int semaphores);

/// Succeeds only for the only process that is registered, and lets nobody in any more: it holds the first mutex. When
/// it fails, errno tells why: EAGAIN beside others.
bool lockAsLast(int setID);
/// For the last process where the set is not its own to remove: leaves it as if others were still there.
void unlockAndUnregister(int setID);
/// Succeeds only while another process is registered; errno is EAGAIN otherwise.
bool unregisterBesideOthers(int setID);

#endif
