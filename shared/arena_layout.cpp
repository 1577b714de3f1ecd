#include "shared/arena_layout.h"

#include "shared/store_order.h"

#include <cstring>

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

SharedMemoryBlockHeader *RunWalk::next()
{
    index_ += length_;
    length_ = 0;
    if (index_ >= blockCount_)
        return nullptr;
    SharedMemoryBlockHeader *run = header_->block(index_);
    const unsigned int said = *static_cast<volatile unsigned int *>(&run->blockCount);
    if (said == 0 || said > blockCount_ - index_)
        return nullptr;
    length_ = said;
    return run;
}

namespace
{

constexpr unsigned int blocksFor(unsigned int bytes)
{
    constexpr unsigned int blockBytes = sizeof(SharedMemoryBlockHeader);
    return bytes / blockBytes + (bytes % blockBytes ? 1 : 0);
}

}  // namespace

SharedMemoryBlockHeader *ArenaBlocks::find(const SharedMemoryObjectID &id) const
{
    RunWalk walk(header_, count_);
    while (SharedMemoryBlockHeader *run = walk.next())
        if (run->objectID == id)
            return run;
    return nullptr;
}

SharedMemoryBlockHeader *ArenaBlocks::allocate(unsigned int bytes) const
{
    const unsigned int needed = blocksFor(bytes);
    RunWalk walk(header_, count_);
    while (SharedMemoryBlockHeader *run = walk.next()) {
        if (run->useCount != 0 || walk.runLength() < needed || needed == 0)
            continue;
        const unsigned int remainder = walk.runLength() - needed;
        if (remainder != 0) {
            // The rest becomes a run of its own inside the run that still covers it, then the run is shortened.
            SharedMemoryBlockHeader *rest = header_->block(walk.runIndex() + needed);
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

void ArenaBlocks::reclaimUnnamed() const
{
    RunWalk walk(header_, count_);
    while (SharedMemoryBlockHeader *run = walk.next())
        if (run->useCount != 0 && run->objectID.name[0] == '\0')
            run->useCount = 0;
}

bool ArenaBlocks::holds(const SharedMemoryBlockHeader *run, unsigned int bytes) const
{
    const unsigned int needed = blocksFor(bytes);
    const auto index = static_cast<unsigned int>(run - header_->block(0));
    return run->blockCount >= needed && index + needed <= count_;
}
