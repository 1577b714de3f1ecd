#include "shared/semaphore_set.h"

#include <cerrno>
#include <sys/ipc.h>
#include <sys/sem.h>

namespace
{

/// semop, repeated while a signal interrupts it; errno tells of a failure.
bool semaphoreOperation(int setID, sembuf *operations, unsigned int count)
{
    while (::semop(setID, operations, count) == -1)
        if (errno != EINTR)
            return false;
    return true;
}

Joining outcomeOf(bool succeeded)
{
    if (succeeded)
        return Joining::Done;
    if (errno == ERANGE)
        return Joining::Full;
    return setIsGone(errno) ? Joining::Again : Joining::Failed;
}

/// Where all semaphores are 0 nobody has initialised the set, or whoever made it died before.
bool initialiseAndRegister(int setID, int semaphores)
{
    sembuf operations[2 * mostSemaphores];
    for (int k = 0; k < semaphores; ++k) {
        const unsigned short semaphore = static_cast<unsigned short>(k);
        operations[k] = {semaphore, 0, IPC_NOWAIT};
        operations[semaphores + k] = {semaphore, +1, IPC_NOWAIT};
    }
    return semaphoreOperation(setID, operations, 2U * static_cast<unsigned int>(semaphores));
}

/// Waits for the first mutex, which a process that removes the set holds, and leaves it free.
bool registerOnceFree(int setID)
{
    sembuf operations[] = {{firstMutexSemaphore, -1, 0}, {registrationSemaphore, +1, 0}, {firstMutexSemaphore, +1, 0}};
    return semaphoreOperation(setID, operations, 3);
}

}  // namespace

bool setIsGone(int error)
{
    return error == EIDRM || error == EINVAL;
}

Joining joinSet(int setID, int semaphores)
{
    if (initialiseAndRegister(setID, semaphores))
        return Joining::Done;
    if (errno != EAGAIN)
        return outcomeOf(false);
    return outcomeOf(registerOnceFree(setID));
}

bool lockAsLast(int setID)
{
    sembuf operations[] = {{registrationSemaphore, -1, IPC_NOWAIT},
                           {registrationSemaphore, 0, IPC_NOWAIT},
                           {registrationSemaphore, +1, IPC_NOWAIT},
                           {firstMutexSemaphore, -1, SEM_UNDO}};
    return semaphoreOperation(setID, operations, 4);
}

void unlockAndUnregister(int setID)
{
    sembuf operations[] = {{registrationSemaphore, -1, IPC_NOWAIT}, {firstMutexSemaphore, +1, SEM_UNDO}};
    semaphoreOperation(setID, operations, 2);
}

bool unregisterBesideOthers(int setID)
{
    sembuf operations[] = {{registrationSemaphore, -2, IPC_NOWAIT}, {registrationSemaphore, +1, IPC_NOWAIT}};
    return semaphoreOperation(setID, operations, 2);
}
