// The order of stores in shared memory.
#ifndef SORVANE_SHARED_STORE_ORDER_H
#define SORVANE_SHARED_STORE_ORDER_H

#include <atomic>

/// Every store before it is made before every store after it, as seen from the segment by whoever survives this
/// process. x86 makes stores in program order; the compiler is what has to be told.
inline void storesBeforeAreDone()
{
    std::atomic_signal_fence(std::memory_order_seq_cst);
}

#endif
