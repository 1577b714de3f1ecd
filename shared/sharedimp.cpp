#include "shared/sharedimp.h"

#include <cstring>

#include "shared/arena_check.h"
#include "shared/linked_list.h"
#include "shared/store_order.h"

bool SharedMemoryObjectID::operator==(const SharedMemoryObjectID &other) const
{
    return id == other.id && std::strncmp(name, other.name, nameBytes) == 0;
}

bool SharedMemoryArenaID::operator==(const SharedMemoryArenaID &other) const
{
    return objectID == other.objectID && mutexID.sameMutex(other.mutexID);
}

void SharedMemoryBlockHeader::Name(const SharedMemoryObjectID &object)
{
    std::memcpy(objectID.name + 1, object.name + 1, sizeof objectID.name - 1);
    objectID.id = object.id;
    mutexID = MutexID("", 0, 1);
    storesBeforeAreDone();
    objectID.name[0] = object.name[0];
}

void *SharedMemoryBlockHeader::operator new(std::size_t size, SharedMemoryArenaHeader *arena) noexcept
{
    return arena->AllocateBlock(static_cast<unsigned int>(size));
}

SharedMemoryArenaHeader::SharedMemoryArenaHeader(const SharedMemoryArenaID &id, unsigned int size) : arenaID(id)
{
    // The counts are not touched before the end: in a segment of zeros they are 0 so far.
    SharedMemoryBlockHeader *allBlocks = block(0);
    allBlocks->objectID = SharedMemoryObjectID("", 0);
    allBlocks->mutexID = MutexID("", 0, 1);
    allBlocks->useCount = 0;
    allBlocks->blockCount = blocksInSegment(size);
    storesBeforeAreDone();
    buildCount = 1;
    storesBeforeAreDone();
    blockCount = blocksInSegment(size);
}

SharedMemoryBlockHeader *SharedMemoryArenaHeader::block(unsigned int index)
{
    return reinterpret_cast<SharedMemoryBlockHeader *>(this + 1) + index;
}

SharedMemoryBlockHeader *SharedMemoryArenaHeader::AllocateBlock(unsigned int size)
{
    constexpr unsigned int blockBytes = sizeof(SharedMemoryBlockHeader);
    const unsigned int needed = size / blockBytes + (size % blockBytes ? 1 : 0);
    RunWalk walk(this, trustedBlockCount(this));
    while (SharedMemoryBlockHeader *run = walk.next()) {
        if (run->useCount != 0 || walk.runLength() < needed || needed == 0)
            continue;
        const unsigned int remainder = walk.runLength() - needed;
        if (remainder != 0) {
            // The rest becomes a run of its own inside the run that still covers it, then the run is shortened.
            SharedMemoryBlockHeader *rest = block(walk.runIndex() + needed);
            rest->useCount = 0;
            rest->blockCount = remainder;
            storesBeforeAreDone();
            run->blockCount = needed;
            storesBeforeAreDone();
        }
        run->useCount = 1;
        return run;
    }
    return nullptr;
}

void SharedMemoryArenaHeader::ReclaimUnnamedRuns()
{
    RunWalk walk(this, trustedBlockCount(this));
    while (SharedMemoryBlockHeader *run = walk.next())
        if (run->useCount != 0 && run->objectID.name[0] == '\0')
            run->useCount = 0;
}

constinit SharedMemoryLocalListElement *SharedMemoryLocalListElement::SharedMemoryLocalListStart = nullptr;

SharedMemoryLocalListElement *
SharedMemoryLocalListElement::SearchForSharedMemoryArenaHeader(const SharedMemoryArenaID &id)
{
    // Compared with what was asked for, not with what stands in the segment: there may be none, or a damaged one.
    for (SharedMemoryLocalListElement *element = SharedMemoryLocalListStart; element; element = element->next)
        if (element->sharedMemory->arenaID == id)
            return element;
    return nullptr;
}

namespace
{

/// The arena in an attached segment, built if nobody has finished it; null when it cannot be used.
SharedMemoryArenaHeader *arenaIn(LinuxSharedMemory &memory)
{
    if (!memory.address)
        return nullptr;
    auto *header = static_cast<SharedMemoryArenaHeader *>(memory.address);
    switch (examineArena(header, memory.arenaID, memory.GetSize())) {
    case ArenaState::whole:
        return header;
    case ArenaState::unfinished:
        if (memory.MeFirst() || memory.Alone())
            return new (memory.address) SharedMemoryArenaHeader(memory.arenaID, memory.GetSize());
        memory.Abandon();  // or the next one would not be alone either
        return nullptr;
    case ArenaState::foreign:
        memory.Abandon();
        return nullptr;
    case ArenaState::corrupt:
        return nullptr;
    }
    return nullptr;
}

}  // namespace

SharedMemoryLocalListElement *SharedMemoryLocalListElement::GetSharedMemoryArenaHeader(const SharedMemoryArenaID &id)
{
    if (SharedMemoryLocalListElement *element = SearchForSharedMemoryArenaHeader(id))
        return element;
    // The mutex comes first, so that attaching, building and checking the arena happen under it. It also decides the
    // key of the set: where it cannot be had, no other mutex may be asked for.
    Mutex *mutex = Mutex::GetLocalMutex(id.mutexID);
    if (!mutex)
        return nullptr;
    auto *element = new (std::nothrow) SharedMemoryLocalListElement;
    if (element) {
        MutexGuard guard(mutex);
        auto *memory = new (std::nothrow) LinuxSharedMemory(id);
        if (memory) {
            memory->mutex = mutex;
            element->arenaHeader = arenaIn(*memory);
        }
        element->sharedMemory = memory;
    }
    if (!element || !element->sharedMemory) {
        Mutex::ReleaseLocalMutex(mutex);
        delete element;
        return nullptr;
    }
    element->next = SharedMemoryLocalListStart;
    SharedMemoryLocalListStart = element;
    return element;
}

SharedMemoryBlockHeader *SharedMemoryLocalListElement::FindSharedMemoryObject(SharedMemoryArenaHeader *header,
                                                                              const SharedMemoryObjectID &id)
{
    if (!header)
        return nullptr;
    RunWalk walk(header, trustedBlockCount(header));
    while (SharedMemoryBlockHeader *run = walk.next())
        if (run->objectID == id)
            return run;
    return nullptr;
}

void SharedMemoryLocalListElement::ReleaseSharedMemoryElement(SharedMemoryLocalListElement *element)
{
    SharedMemory *memory = element->sharedMemory;
    Mutex *mutex = memory->mutex;
    {
        MutexGuard guard(mutex);
        if (--memory->referenceCount > 0)
            return;
        // The segment goes before the set, and under its mutex: a process that starts now waits for both.
        memory->Delete();
    }
    unlinkFrom(SharedMemoryLocalListStart, element);
    Mutex::ReleaseLocalMutex(mutex);
    delete memory;
    delete element;
}
