// Whether what lies in a segment is an arena. Nothing here changes anything, and nothing that was read is followed
// before it has been tested.
#ifndef SORVANE_SHARED_ARENA_CHECK_H
#define SORVANE_SHARED_ARENA_CHECK_H

#include "shared/arena_layout.h"

enum class ArenaState {
    Whole,       // a header of ours and a chain of runs that covers all blocks
    Unfinished,  // no header yet: zeros, or what its maker had stored of it before it died
    Corrupt,     // carries our name, but header or chain are damaged
    Foreign,     // somebody else's segment under our key
};

ArenaState examineArena(SharedMemoryArenaHeader *header, const SharedMemoryArenaID &id, unsigned int size);

#endif
