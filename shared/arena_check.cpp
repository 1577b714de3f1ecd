#include "shared/arena_check.h"

#include <cstring>
#include <new>

namespace
{

constexpr std::size_t headerBytes = sizeof(SharedMemoryArenaHeader) + sizeof(SharedMemoryBlockHeader);

/// Every byte is zero still or what a new header has there.
bool isPartOfNewHeader(const SharedMemoryArenaHeader *header, const SharedMemoryArenaID &id, unsigned int size)
{
    alignas(SharedMemoryArenaHeader) unsigned char expected[headerBytes] = {};
    new (expected) SharedMemoryArenaHeader(id, size);
    unsigned char found[headerBytes];
    std::memcpy(found, header, headerBytes);
    for (std::size_t k = 0; k < headerBytes; ++k)
        if (found[k] != 0 && found[k] != expected[k])
            return false;
    return true;
}

/// Nothing behind the header is used before the header is complete.
bool isZeroBehindHeader(const SharedMemoryArenaHeader *header, unsigned int size)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(header);
    for (std::size_t k = headerBytes; k < size; ++k)
        if (bytes[k] != 0)
            return false;
    return true;
}

bool chainIsWhole(SharedMemoryArenaHeader *header, unsigned int blockCount)
{
    RunWalk walk(header, blockCount);
    while (walk.next()) {
    }
    return walk.reachedEnd();
}

}  // namespace

ArenaState examineArena(SharedMemoryArenaHeader *header, const SharedMemoryArenaID &id, unsigned int size)
{
    if (header->blockCount == 0 && isPartOfNewHeader(header, id, size) && isZeroBehindHeader(header, size))
        return ArenaState::Unfinished;
    if (!(header->arenaID.objectID == id.objectID))
        return ArenaState::Foreign;
    const unsigned int blockCount = blocksInSegment(size);
    if (header->blockCount != blockCount || header->buildCount == 0 || !chainIsWhole(header, blockCount))
        return ArenaState::Corrupt;
    return ArenaState::Whole;
}
