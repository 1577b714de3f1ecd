// ThreadSanitizer does not see that a SysV semaphore orders what threads do; in its build the mutexes tell it.
#ifndef SORVANE_SHARED_THREAD_SANITIZER_H
#define SORVANE_SHARED_THREAD_SANITIZER_H

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>

inline void tellAcquired(void *mutex)
{
    __tsan_acquire(mutex);
}

inline void tellReleased(void *mutex)
{
    __tsan_release(mutex);
}
#else
inline void tellAcquired(void *) {}
inline void tellReleased(void *) {}
#endif

#endif
