// What lies in an arena: a segment that begins with a header and is divided into runs of 124-byte blocks, each run
// holding one named object.
//
// The layouts are shared by every process on the machine, 32- and 64-bit alike. A process may be killed between any
// two of its stores, so they are made in an order that leaves a whole chain of runs behind.
#ifndef SORVANE_SHARED_ARENA_LAYOUT_H
#define SORVANE_SHARED_ARENA_LAYOUT_H

#include "shared/mutex.h"

#include <cstddef>
#include <new>
#include <type_traits>

struct SharedMemoryObjectID {
    SharedMemoryObjectID() = default;
    constexpr SharedMemoryObjectID(const char *objectName, int id) : name(), padding(), id(id)
    {
        for (int k = 0; k < nameBytes - 1 && objectName[k]; ++k)
            name[k] = objectName[k];
    }

    bool operator==(const SharedMemoryObjectID &other) const;

    static constexpr int nameBytes = 50;
    char name[nameBytes];
    char padding[2];
    int id;
};
static_assert(sizeof(SharedMemoryObjectID) == 56);

/// What a process asks for when it wants an arena. The size and the mutex's count take no part in a comparison.
struct SharedMemoryArenaID {
    bool operator==(const SharedMemoryArenaID &other) const;

    SharedMemoryObjectID objectID;
    MutexID mutexID;
    unsigned int size;
};
static_assert(sizeof(SharedMemoryArenaID) == 120);

struct SharedMemoryArenaHeader;

/// Stands at the start of every run of blocks; the object's data begin behind it.
struct SharedMemoryBlockHeader {
    /// Makes an allocated run an object. The first byte of the name is stored last: until then the run has none.
    void Name(const SharedMemoryObjectID &id);

    /// A run of the arena for this header and what a derived class puts behind it, as AllocateBlock gives it; null when
    /// none is long enough. The construction that follows leaves it as the arena laid it out.
    static void *operator new(std::size_t size, SharedMemoryArenaHeader *arena) noexcept;

    void *data() { return this + 1; }

    SharedMemoryObjectID objectID;
    MutexID mutexID;
    unsigned int useCount;    // 0: the run is free
    unsigned int blockCount;  // length of the run, the header's block included
};
static_assert(sizeof(SharedMemoryBlockHeader) == 124 && std::is_trivial_v<SharedMemoryBlockHeader>);

/// Stands at the start of the segment; the blocks follow it.
struct SharedMemoryArenaHeader {
    /// Builds the header of an empty arena in place, in a segment of zeros. The two counts are stored last: a header
    /// with a block count is complete.
    SharedMemoryArenaHeader(const SharedMemoryArenaID &id, unsigned int size);

    // ArenaBlocks has what they do. They are defined in sharedimp.cpp: how many blocks may be trusted to be there only
    // the process knows that has attached the segment.
    SharedMemoryBlockHeader *AllocateBlock(unsigned int size);
    void ReclaimUnnamedRuns();

    SharedMemoryBlockHeader *block(unsigned int index);

    SharedMemoryArenaID arenaID;
    unsigned int buildCount;
    unsigned int blockCount;
};
static_assert(sizeof(SharedMemoryArenaHeader) == 128);

/// The number of blocks in a segment of that size.
constexpr unsigned int blocksInSegment(unsigned int size)
{
    constexpr unsigned int headers = sizeof(SharedMemoryArenaHeader) + sizeof(SharedMemoryBlockHeader);
    return size < headers ? 0 : (size - headers) / sizeof(SharedMemoryBlockHeader);
}

/// Walks the runs of a chain of blockCount blocks and stops at its end or at a run that cannot be one (of length 0, or
/// past the end).
class RunWalk
{
public:
    RunWalk(SharedMemoryArenaHeader *header, unsigned int blockCount) : header_(header), blockCount_(blockCount) {}

    /// The next run, or null. Its length is read once, so that a change behind our back cannot lead past the end.
    SharedMemoryBlockHeader *next();
    unsigned int runLength() const { return length_; }
    unsigned int runIndex() const { return index_; }
    /// After the last run: whether the runs cover all blocks.
    bool reachedEnd() const { return index_ + length_ == blockCount_; }

private:
    SharedMemoryArenaHeader *header_;
    unsigned int blockCount_;
    unsigned int index_ = 0;
    unsigned int length_ = 0;
};

/// The blocks of an arena, as many as its segment has.
class ArenaBlocks
{
public:
    ArenaBlocks(SharedMemoryArenaHeader *header, unsigned int count) : header_(header), count_(count) {}

    SharedMemoryBlockHeader *find(const SharedMemoryObjectID &id) const;
    /// First fit over the free runs; the rest of a longer run becomes a free run.
    SharedMemoryBlockHeader *allocate(unsigned int bytes) const;
    /// Frees the runs that are used but have no name: whoever allocated them died before naming them. Only for a
    /// holder of the arena's mutex, under which allocation and naming happen.
    void reclaimUnnamed() const;
    /// Whether a run has room for so many bytes with its header, whatever that says by now.
    bool holds(const SharedMemoryBlockHeader *run, unsigned int bytes) const;

private:
    SharedMemoryArenaHeader *header_;
    unsigned int count_;
};

#endif
