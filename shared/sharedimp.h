// Arenas: named SysV shared memory segments, divided into runs of 124-byte blocks, each run holding one named object.
//
// The layouts are shared by every process on the machine, 32- and 64-bit alike. A process may be killed between any
// two of its stores, so they are made in an order that leaves a whole chain of runs behind.
#ifndef SORVANE_SHARED_SHAREDIMP_H
#define SORVANE_SHARED_SHAREDIMP_H

#include <cstddef>
#include <new>
#include <type_traits>

#include "shared/mutex.h"

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

    /// First fit over the free runs; the rest of a longer run becomes a free run.
    SharedMemoryBlockHeader *AllocateBlock(unsigned int size);
    /// Frees the runs that are used but have no name: whoever allocated them died before naming them. Only for a
    /// holder of the arena's mutex, under which allocation and naming happen.
    void ReclaimUnnamedRuns();

    SharedMemoryBlockHeader *block(unsigned int index);

    SharedMemoryArenaID arenaID;
    unsigned int buildCount;
    unsigned int blockCount;
};
static_assert(sizeof(SharedMemoryArenaHeader) == 128);

/// One attached segment.
class SharedMemory
{
public:
    explicit SharedMemory(const SharedMemoryArenaID &id) : size(id.size), arenaID(id) {}
    SharedMemory(const SharedMemory &) = delete;
    SharedMemory &operator=(const SharedMemory &) = delete;

    virtual ~SharedMemory() = default;
    virtual bool Create() = 0;
    virtual bool Delete() = 0;
    virtual unsigned int GetSize() { return size; }
    virtual bool Lock() = 0;
    virtual bool UnLock() = 0;
    virtual bool MeFirst() = 0;

    int referenceCount = 0;   // objects of this process that use the arena
    Mutex *mutex = nullptr;   // the arena's
    void *address = nullptr;  // null: not attached
    unsigned int size;
    SharedMemoryArenaID arenaID;
};

class LinuxSharedMemory final : public SharedMemory
{
public:
    explicit LinuxSharedMemory(const SharedMemoryArenaID &id);
    ~LinuxSharedMemory() override;

    /// Attaches the segment, or makes one of zeros. Hold the arena's mutex.
    bool Create() override;
    /// Detaches the segment and removes it when nobody is attached. Hold the arena's mutex.
    bool Delete() override;
    bool Lock() override;
    bool UnLock() override;
    bool MeFirst() override;

    /// Detaches the segment and leaves it to its owner or to those that use it.
    void Abandon();
    /// Whether no other attachment exists.
    bool Alone() const;

    int segmentID = -1;
    unsigned char meFirst = 0;

private:
    enum class Outcome { attached, removedMeanwhile, failed };
    Outcome Attach();
};

/// One arena that this process has attached, or tried to: without a segment arenaHeader is null.
struct SharedMemoryLocalListElement {
    static SharedMemoryLocalListElement *SearchForSharedMemoryArenaHeader(const SharedMemoryArenaID &id);
    /// The element of the arena, which is attached or made on first use; null when memory is exhausted.
    static SharedMemoryLocalListElement *GetSharedMemoryArenaHeader(const SharedMemoryArenaID &id);
    static SharedMemoryBlockHeader *FindSharedMemoryObject(SharedMemoryArenaHeader *header,
                                                           const SharedMemoryObjectID &id);
    static void ReleaseSharedMemoryElement(SharedMemoryLocalListElement *element);

    static SharedMemoryLocalListElement *SharedMemoryLocalListStart;

    SharedMemoryLocalListElement *next = nullptr;
    SharedMemoryArenaHeader *arenaHeader = nullptr;
    SharedMemory *sharedMemory = nullptr;
};

#endif
