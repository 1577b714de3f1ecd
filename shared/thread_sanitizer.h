// ThreadSanitizer does not see that a SysV semaphore orders what threads do; in its build the mutexes tell it.
#ifndef SORVANE_SHARED_THREAD_SANITIZER_H
#define SORVANE_SHARED_THREAD_SANITIZER_H

#ifdef __has_feature  // clang's way to ask; gcc defines __SANITIZE_THREAD__
#if __has_feature(thread_sanitizer)
#define __SANITIZE_THREAD__ 1
#endif
#endif

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
