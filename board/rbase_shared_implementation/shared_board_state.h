// What every process that drives the boards must see alike: four tables in one shared arena, each under a mutex of its
// own, set up before any other code of the program runs and let go after all of it.
//
// Where the arena or a table is absent the operations work on a table of the same layout in the process, without a
// lock: one process still drives its boards fully.
#ifndef SORVANE_BOARD_SHARED_BOARD_STATE_H
#define SORVANE_BOARD_SHARED_BOARD_STATE_H

#include "api/sorvaneusb_types.h"
#include "shared/sharedimp.h"

#include <cstddef>
#include <cstdint>

constexpr int deviceCount = 16;  // device numbers 0 to 15 index every table

/// What outputs of one device are lit in the on period, or in the off period, of the flash cycle.
struct OutputPatterns {
    usbOutput device[deviceCount];
};
static_assert(sizeof(OutputPatterns) == 80);

struct EEPROMEntry {
    R20EEPROM eeprom;          // as last configured
    unsigned char configured;  // 1 once any process has configured it
    unsigned char reserved;
};
static_assert(sizeof(EEPROMEntry) == 8 && offsetof(EEPROMEntry, configured) == 6);

struct EEPROMTable {
    EEPROMEntry device[deviceCount];
};
static_assert(sizeof(EEPROMTable) == 128);

/// A batch of timestamped serial data, handed out item by item to whichever process asks. Its fields are never trusted:
/// a count or index that cannot be means an empty buffer.
struct ReceiveBuffer {
    bool empty() const { return count > mostCount || readIndex >= count; }
    /// Takes over a batch; one of 256 bytes counts as none. Until it is there in full the buffer is empty, also for
    /// whoever follows a process that was killed in between.
    void fill(const unsigned char *batch, unsigned long length);
    /// Hands out up to size bytes and returns their number. They count as handed out once all are.
    unsigned int take(unsigned char *item, unsigned int size);

    static constexpr unsigned int mostCount = 255;
    std::uint16_t count;
    std::uint16_t readIndex;
    unsigned char bytes[256];
};
static_assert(sizeof(ReceiveBuffer) == 260 && offsetof(ReceiveBuffer, bytes) == 4);

struct ReceiveBuffers {
    ReceiveBuffer device[deviceCount];
};
static_assert(sizeof(ReceiveBuffers) == 4160);

/// The process's handle of one shared object.
struct SharedMemoryObject {
    SharedMemoryBlockHeader *object;  // null: absent
    Mutex *mutex;                     // null: absent
    SharedMemoryLocalListElement *element;
};

extern SharedMemoryArenaID sharedBlock;
extern SharedMemoryObject SharedOutOnCopy;
extern SharedMemoryObject SharedOutOffCopy;
extern SharedMemoryObject SharedcurrentEEPROM;
extern SharedMemoryObject SharedserialRxBuffer;

/// Holds an object's mutex for a scope. Where two are held, SharedOutOnCopy comes before SharedOutOffCopy.
class SharedObjectLock : public MutexGuard
{
public:
    explicit SharedObjectLock(const SharedMemoryObject &handle) : MutexGuard(handle.object ? handle.mutex : nullptr) {}
};

// A device's entry, in the arena or in the process. Hold the object's lock.
usbOutput &onPattern(int device);
usbOutput &offPattern(int device);
EEPROMEntry &eepromEntry(int device);
ReceiveBuffer &receiveBuffer(int device);

#endif
