// One SysV shared memory segment, attached.
#ifndef SORVANE_SHARED_SEGMENT_H
#define SORVANE_SHARED_SEGMENT_H

#include "shared/arena_layout.h"

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

    /// Attaches the segment, or makes one. A new one is all zeros: the kernel gives no others. Hold the arena's mutex.
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
    enum class Outcome { Attached, RemovedMeanwhile, Failed };
    Outcome Attach();
};

#endif
