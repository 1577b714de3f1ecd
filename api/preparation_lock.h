// Keeps programs that open one board at the same time apart while it is prepared.
#ifndef SORVANE_API_PREPARATION_LOCK_H
#define SORVANE_API_PREPARATION_LOCK_H

#include <cerrno>
#include <sys/file.h>

/// Holds an exclusive advisory lock on a board's node for a scope; whoever comes second waits, and then finds what the
/// first one made. Where the lock cannot be had, the preparation goes on without. Never nested: it belongs to the open
/// file, and the inner scope would give back the outer one's.
class PreparationLock
{
public:
    explicit PreparationLock(int deviceHandle) : deviceHandle_(deviceHandle)
    {
        while (::flock(deviceHandle, LOCK_EX) == -1 && errno == EINTR) {
        }
    }
    /// Not left to closing: a child that was forked meanwhile has the open file too, and would keep the lock.
    ~PreparationLock() { ::flock(deviceHandle_, LOCK_UN); }
    PreparationLock(const PreparationLock &) = delete;
    PreparationLock &operator=(const PreparationLock &) = delete;

private:
    int deviceHandle_;
};

#endif
