// The arenas that this process uses: what it asks for by name is attached, or made, and found in or added to the arena.
#ifndef SORVANE_SHARED_SHAREDIMP_H
#define SORVANE_SHARED_SHAREDIMP_H

#include "shared/segment.h"

#include <optional>

/// One arena that this process has attached, or tried to: without a segment arenaHeader is null.
struct SharedMemoryLocalListElement {
    static SharedMemoryLocalListElement *SearchForSharedMemoryArenaHeader(const SharedMemoryArenaID &id);
    /// The element of the arena, which is attached or made on first use; null when memory is exhausted. The arena's
    /// mutex is held from before it is attached, where it can be had, and on after the call as long as `hold` does.
    static SharedMemoryLocalListElement *GetSharedMemoryArenaHeader(const SharedMemoryArenaID &id,
                                                                    std::optional<MutexGuard> &hold);
    static SharedMemoryLocalListElement *GetSharedMemoryArenaHeader(const SharedMemoryArenaID &id)
    {
        std::optional<MutexGuard> hold;
        return GetSharedMemoryArenaHeader(id, hold);
    }
    static SharedMemoryBlockHeader *FindSharedMemoryObject(SharedMemoryArenaHeader *header,
                                                           const SharedMemoryObjectID &id);
    /// Drops so many uses of the arena, under one hold of its mutex; the last detaches it.
    static void ReleaseSharedMemoryElement(SharedMemoryLocalListElement *element, int uses = 1);

    /// Adds a use of the named object, which takes so many bytes with its header. One that is not there is allocated
    /// and filled with zeros; one whose run is too short is not used. Null without an object. Hold the arena's mutex.
    SharedMemoryBlockHeader *UseSharedMemoryObject(const SharedMemoryObjectID &id, unsigned int bytes) const;

    static SharedMemoryLocalListElement *SharedMemoryLocalListStart;

    SharedMemoryLocalListElement *next = nullptr;
    SharedMemoryArenaHeader *arenaHeader = nullptr;
    SharedMemory *sharedMemory = nullptr;
};

#endif
