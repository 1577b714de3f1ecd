// The arenas that this process uses: what it asks for by name is attached, or made, and found in or added to the arena.
#ifndef SORVANE_SHARED_SHAREDIMP_H
#define SORVANE_SHARED_SHAREDIMP_H

#include "shared/segment.h"

/// One arena that this process has attached, or tried to: without a segment arenaHeader is null.
struct SharedMemoryLocalListElement {
    static SharedMemoryLocalListElement *SearchForSharedMemoryArenaHeader(const SharedMemoryArenaID &id);
    /// The element of the arena, which is attached or made on first use; null when memory is exhausted.
    static SharedMemoryLocalListElement *GetSharedMemoryArenaHeader(const SharedMemoryArenaID &id);
    static SharedMemoryBlockHeader *FindSharedMemoryObject(SharedMemoryArenaHeader *header,
                                                           const SharedMemoryObjectID &id);
    static void ReleaseSharedMemoryElement(SharedMemoryLocalListElement *element);

    /// Adds a use of the named object, which takes so many bytes with its header. One that is not there is allocated
    /// and filled with zeros; one whose run is too short is not used. Null without an object. Hold the arena's mutex.
    SharedMemoryBlockHeader *UseSharedMemoryObject(const SharedMemoryObjectID &id, unsigned int bytes) const;

    static SharedMemoryLocalListElement *SharedMemoryLocalListStart;

    SharedMemoryLocalListElement *next = nullptr;
    SharedMemoryArenaHeader *arenaHeader = nullptr;
    SharedMemory *sharedMemory = nullptr;
};

#endif
