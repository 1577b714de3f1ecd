#include "shared/sharedimp.h"

#include "shared/arena_check.h"
#include "shared/linked_list.h"

#include <cstring>
#include <new>

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

/// The blocks of an arena that this process has attached: none when its header does not say what the segment's size
/// says. Of a header in other memory, what the header says.
ArenaBlocks blocksOf(SharedMemoryArenaHeader *header)
{
    for (SharedMemoryLocalListElement *element = SharedMemoryLocalListElement::SharedMemoryLocalListStart; element;
         element = element->next) {
        if (element->arenaHeader != header)
            continue;
        const unsigned int count = blocksInSegment(element->sharedMemory->GetSize());
        return {header, header->blockCount == count ? count : 0};
    }
    return {header, header->blockCount};
}

/// The arena in an attached segment, built if nobody has finished it; null when it cannot be used.
SharedMemoryArenaHeader *arenaIn(LinuxSharedMemory &memory)
{
    if (!memory.address)
        return nullptr;
    const auto build = [&] { return new (memory.address) SharedMemoryArenaHeader(memory.arenaID, memory.GetSize()); };
    if (memory.MeFirst())
        return build();  // whatever the check would look for, it is zeros
    auto *header = static_cast<SharedMemoryArenaHeader *>(memory.address);
    switch (examineArena(header, memory.arenaID, memory.GetSize())) {
    case ArenaState::Whole:
        return header;
    case ArenaState::Unfinished:
        if (memory.Alone())
            return build();
        memory.Abandon();  // or the next one would not be alone either
        return nullptr;
    case ArenaState::Foreign:
        memory.Abandon();
        return nullptr;
    case ArenaState::Corrupt:
        return nullptr;
    }
    return nullptr;
}

}  // namespace

SharedMemoryLocalListElement *SharedMemoryLocalListElement::GetSharedMemoryArenaHeader(const SharedMemoryArenaID &id,
                                                                                       std::optional<MutexGuard> &hold)
{
    if (SharedMemoryLocalListElement *element = SearchForSharedMemoryArenaHeader(id)) {
        hold.emplace(element->sharedMemory->mutex);
        return element;
    }
    // The mutex comes first, so that attaching, building and checking the arena happen under it. It also decides the
    // key of the set: where it cannot be had, no other mutex may be asked for.
    Mutex *mutex = Mutex::GetLocalMutex(id.mutexID);
    if (!mutex)
        return nullptr;
    auto *element = new (std::nothrow) SharedMemoryLocalListElement;
    hold.emplace(mutex);
    auto *memory = element ? new (std::nothrow) LinuxSharedMemory(id) : nullptr;
    if (!memory) {
        hold.reset();
        Mutex::ReleaseLocalMutex(mutex);
        delete element;
        return nullptr;
    }
    memory->mutex = mutex;
    element->sharedMemory = memory;
    element->arenaHeader = arenaIn(*memory);
    element->next = SharedMemoryLocalListStart;
    SharedMemoryLocalListStart = element;
    return element;
}

SharedMemoryBlockHeader *SharedMemoryLocalListElement::FindSharedMemoryObject(SharedMemoryArenaHeader *header,
                                                                              const SharedMemoryObjectID &id)
{
    return header ? blocksOf(header).find(id) : nullptr;
}

SharedMemoryBlockHeader *SharedMemoryArenaHeader::AllocateBlock(unsigned int size)
{
    return blocksOf(this).allocate(size);
}

void SharedMemoryArenaHeader::ReclaimUnnamedRuns()
{
    blocksOf(this).reclaimUnnamed();
}

SharedMemoryBlockHeader *SharedMemoryLocalListElement::UseSharedMemoryObject(const SharedMemoryObjectID &id,
                                                                             unsigned int bytes) const
{
    if (!arenaHeader)
        return nullptr;
    if (SharedMemoryBlockHeader *found = FindSharedMemoryObject(arenaHeader, id)) {
        if (!blocksOf(arenaHeader).holds(found, bytes))
            return nullptr;
        ++found->useCount;
        return found;
    }
    SharedMemoryBlockHeader *made = arenaHeader->AllocateBlock(bytes);
    if (!made)
        return nullptr;
    // A run that was used before holds what its last use left; no object starts with that.
    std::memset(made->data(), 0, bytes - sizeof *made);
    made->Name(id);
    return made;
}

void SharedMemoryLocalListElement::ReleaseSharedMemoryElement(SharedMemoryLocalListElement *element, int uses)
{
    SharedMemory *memory = element->sharedMemory;
    Mutex *mutex = memory->mutex;
    {
        MutexGuard guard(mutex);
        memory->referenceCount -= uses;
        if (memory->referenceCount > 0)
            return;
        // The segment goes before the set, and under its mutex: a process that starts now waits for both.
        memory->Delete();
    }
    unlinkFrom(SharedMemoryLocalListStart, element);
    Mutex::ReleaseLocalMutex(mutex);
    delete memory;
    delete element;
}
