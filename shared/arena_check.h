// Whether what lies in a segment is an arena. Nothing here changes anything, and nothing that was read is followed
// before it has been tested.
#ifndef SORVANE_SHARED_ARENA_CHECK_H
#define SORVANE_SHARED_ARENA_CHECK_H

#include "shared/sharedimp.h"

enum class ArenaState {
    whole,       // a header of ours and a chain of runs that covers all blocks
    unfinished,  // no header yet: zeros, or what its maker had stored of it before it died
    corrupt,     // carries our name, but header or chain are damaged
    foreign,     // somebody else's segment under our key
};

/// The number of blocks in a segment of that size.
constexpr unsigned int blocksInSegment(unsigned int size)
{
    constexpr unsigned int headers = sizeof(SharedMemoryArenaHeader) + sizeof(SharedMemoryBlockHeader);
    return size < headers ? 0 : (size - headers) / sizeof(SharedMemoryBlockHeader);
}

ArenaState examineArena(SharedMemoryArenaHeader *header, const SharedMemoryArenaID &id, unsigned int size);

/// Walks the runs of a chain of blockCount blocks and stops at its end or at a run that cannot be one (of length 0, or
/// past the end).
class RunWalk
{
public:
    RunWalk(SharedMemoryArenaHeader *header, unsigned int blockCount) : header(header), blockCount(blockCount) {}

    /// The next run, or null. Its length is read once, so that a change behind our back cannot lead past the end.
    SharedMemoryBlockHeader *next();
    unsigned int runLength() const { return length; }
    unsigned int runIndex() const { return index; }
    /// After the last run: whether the runs cover all blocks.
    bool reachedEnd() const { return index + length == blockCount; }

private:
    SharedMemoryArenaHeader *header;
    unsigned int blockCount;
    unsigned int index = 0;
    unsigned int length = 0;
};

/// The blocks of an arena that this process has attached, 0 when its header does not say what the segment's size
/// says; for a header in other memory, what the header says.
unsigned int trustedBlockCount(SharedMemoryArenaHeader *header);

#endif
