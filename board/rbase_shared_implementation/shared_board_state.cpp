#include "board/rbase_shared_implementation/shared_board_state.h"

#include "shared/mutex_set.h"
#include "shared/store_order.h"

#include <cstring>
#include <iterator>
#include <optional>
#include <pthread.h>
#include <unistd.h>

constinit SharedMemoryArenaID sharedBlock = {{"R20SharedMemory", 0}, {"R20Mutex", 0, 10}, 65536};
constinit SharedMemoryObject SharedOutOnCopy = {};
constinit SharedMemoryObject SharedOutOffCopy = {};
constinit SharedMemoryObject SharedcurrentEEPROM = {};
constinit SharedMemoryObject SharedserialRxBuffer = {};

void ReceiveBuffer::fill(const unsigned char *batch, unsigned long length)
{
    const unsigned long batchBytes = length % sizeof bytes;
    count = 0;
    storesBeforeAreDone();
    std::memcpy(bytes, batch, batchBytes);
    readIndex = 0;
    storesBeforeAreDone();
    count = static_cast<std::uint16_t>(batchBytes);
}

unsigned int ReceiveBuffer::take(unsigned char *item, unsigned int size)
{
    const unsigned int end = count <= mostCount ? count : 0;
    unsigned int index = readIndex;
    unsigned int taken = 0;
    while (taken < size && index < end)
        item[taken++] = bytes[index++];
    storesBeforeAreDone();
    readIndex = static_cast<std::uint16_t>(index);
    return taken;
}

namespace
{

OutputPatterns privateOnPatterns;
OutputPatterns privateOffPatterns;
EEPROMTable privateEEPROMs;
ReceiveBuffers privateReceiveBuffers;

template <class Table>
Table &tableOf(const SharedMemoryObject &handle, Table &privateTable)
{
    return handle.object ? *static_cast<Table *>(handle.object->data()) : privateTable;
}

/// An object as it lies in the arena.
template <class Table>
struct Shared : SharedMemoryBlockHeader {
    Table table;
};
static_assert(sizeof(Shared<OutputPatterns>) == 204 && sizeof(Shared<EEPROMTable>) == 252);
static_assert(sizeof(Shared<ReceiveBuffers>) == 4284);

struct ObjectPlan {
    SharedMemoryObject *handle;
    SharedMemoryObjectID id;
    int mutexNumber;
    unsigned int bytes;  // header and table
};

template <class Table>
constexpr ObjectPlan planOf(SharedMemoryObject &handle, const char *name, int mutexNumber)
{
    return {&handle, {name, 0}, mutexNumber, sizeof(Shared<Table>)};
}

constexpr ObjectPlan plans[] = {
    planOf<OutputPatterns>(SharedOutOnCopy, "OutOnCopies", 1),
    planOf<OutputPatterns>(SharedOutOffCopy, "OutOffCopies", 2),
    planOf<EEPROMTable>(SharedcurrentEEPROM, "R20EEPROMS", 3),
    planOf<ReceiveBuffers>(SharedserialRxBuffer, "R20BUFFERS", 4),
};

/// Hold the arena's mutex.
void setUp(const ObjectPlan &plan, SharedMemoryLocalListElement *arena)
{
    SharedMemoryObject &handle = *plan.handle;
    handle.element = arena;
    ++arena->sharedMemory->referenceCount;
    handle.object = arena->UseSharedMemoryObject(plan.id, plan.bytes);
    if (handle.object)
        handle.mutex = Mutex::GetLocalMutex(MutexID("R20Mutex", plan.mutexNumber, 1));
}

void tearDown(const ObjectPlan &plan)
{
    if (plan.handle->mutex)
        Mutex::ReleaseLocalMutex(plan.handle->mutex);
    *plan.handle = {};
}

/// The process that set the state up, 0 in a child of it: that has copies of the handles, but no registration of its
/// own, and in a PID namespace it may even have its parent's number.
constinit pid_t joinedProcess = 0;

void forgetInChild()
{
    joinedProcess = 0;
    LinuxMutexSet::EnterForkedChild();
}

/// Gives back what fork made: the child's own attachment. Everything else is its parent's.
void detachInChild()
{
    if (SharedOutOnCopy.element)
        static_cast<LinuxSharedMemory *>(SharedOutOnCopy.element->sharedMemory)->Abandon();
    for (const ObjectPlan &plan : plans)
        *plan.handle = {};
}

// 101 is the first priority open to programs: before static objects, in a shared library and in a program alike.

[[gnu::constructor(101)]] void setUpAll()
{
    joinedProcess = ::getpid();
    ::pthread_atfork(nullptr, nullptr, forgetInChild);
    // Attached, searched and built under one hold: nobody else joins or leaves in between.
    std::optional<MutexGuard> hold;
    SharedMemoryLocalListElement *arena = SharedMemoryLocalListElement::GetSharedMemoryArenaHeader(sharedBlock, hold);
    if (!arena)
        return;
    if (arena->arenaHeader && hold->holds())
        arena->arenaHeader->ReclaimUnnamedRuns();
    for (const ObjectPlan &plan : plans)
        setUp(plan, arena);
}

[[gnu::destructor(101)]] void tearDownAll()
{
    if (joinedProcess == 0)
        return detachInChild();
    if (joinedProcess != ::getpid())
        return;
    SharedMemoryLocalListElement *arena = SharedOutOnCopy.element;
    if (!arena)
        return;
    for (auto plan = std::rbegin(plans); plan != std::rend(plans); ++plan)
        tearDown(*plan);
    SharedMemoryLocalListElement::ReleaseSharedMemoryElement(arena, std::size(plans));
}

}  // namespace

usbOutput &onPattern(int device)
{
    return tableOf(SharedOutOnCopy, privateOnPatterns).device[device];
}

usbOutput &offPattern(int device)
{
    return tableOf(SharedOutOffCopy, privateOffPatterns).device[device];
}

EEPROMEntry &eepromEntry(int device)
{
    return tableOf(SharedcurrentEEPROM, privateEEPROMs).device[device];
}

ReceiveBuffer &receiveBuffer(int device)
{
    return tableOf(SharedserialRxBuffer, privateReceiveBuffers).device[device];
}
