// The board's serial EEPROM. The firmware drives the chip; it must be told the chip's type first. The type of every
// board stands in a table that all processes share, under a lock that is held for a whole transfer.
#include "board/exchange.h"
#include "board/flat_memory.h"
#include "board/rbase_shared_implementation/shared_board_state.h"
#include "board/transfer_range.h"
#include "shared/store_order.h"

#include <cstring>
#include <initializer_list>

namespace
{

constexpr unsigned short lastReservedAddress = 7;

/// The bytes that tell one place of the chip from another when its capacity is looked for.
constexpr unsigned int sampleBytes = 100;

/// Bounded by the highest address, not by the capacity: the last byte of the chip is out of reach.
bool readable(const EEPROMEntry &entry, unsigned short address, unsigned int length)
{
    return address > lastReservedAddress && withinLimit(address, length, entry.eeprom.maxAddress);
}

const R20EEPROM &chipOfCapacity(unsigned short capacity)
{
    for (const R20EEPROM *chip :
         {&E24LC01, &E24LC02, &E24LC04, &E24LC08, &E24LC16, &E24LC32, &E24LC64, &E24LC128, &E24LC256})
        if (capacity == chip->maxAddress + 1)
            return *chip;
    return E24LC512;
}

}  // namespace

int RBaseImplementation::ConfigureEEPROM(R20EEPROM *eeprom)
{
    SharedObjectLock lock(SharedcurrentEEPROM);
    if (!eeprom)
        return Fail(usbErrorNullPointer);
    EEPROMEntry &entry = eepromEntry(GetDeviceNo());
    entry.eeprom = *eeprom;
    storesBeforeAreDone();  // a mark without its record would outlive a process killed in between
    entry.configured = 1;
    return Tell(Request::ConfigureEEPROM, eeprom->pageSize, eeprom->addressBytes, high(eeprom->maxAddress),
                low(eeprom->maxAddress), eeprom->busAddress);
}

int RBaseImplementation::UncheckedReadEEPROM(unsigned short address, unsigned char *data, unsigned int length)
{
    SharedObjectLock lock(SharedcurrentEEPROM);
    if (!data)
        return Fail(usbErrorNullPointer);
    return readFlatMemory(*this, Request::ReadEEPROM, address, data, length);
}

int RBaseImplementation::ReadEEPROM(unsigned short address, unsigned char *data, unsigned int length)
{
    SharedObjectLock lock(SharedcurrentEEPROM);
    if (!readable(eepromEntry(GetDeviceNo()), address, length))
        return Fail(usbErrorParameter);
    if (!data)
        return Fail(usbErrorNullPointer);
    return readFlatMemory(*this, Request::ReadEEPROM, address, data, length);
}

int RBaseImplementation::WriteEEPROM(unsigned short address, unsigned char *data, unsigned int length)
{
    SharedObjectLock lock(SharedcurrentEEPROM);
    if (!readable(eepromEntry(GetDeviceNo()), address, length))
        return Fail(usbErrorParameter);
    if (!data)
        return Fail(usbErrorNullPointer);
    return writeFlatMemory(*this, Request::WriteEEPROM, 57, address, data, length);
}

// A chip answers an address beyond its capacity with the data at that address modulo the capacity. So the first
// doubled address at which the data of address 0 appear again is the capacity. A blank chip repeats at once and
// counts as the smallest of its family.
int RBaseImplementation::CheckEEPROM(R20EEPROM *eeprom)
{
    if (!eeprom)
        return Fail(usbErrorNullPointer);
    unsigned char reference[sampleBytes];
    unsigned int probe = 4096;
    unsigned int lastProbe = 32768;
    R20EEPROM attempt = E24LC256;
    if (!ConfigureEEPROM(&attempt))
        return 0;
    if (!UncheckedReadEEPROM(0, reference, sampleBytes)) {  // not of the family with two address bytes
        ClearErrors();
        probe = 128;
        lastProbe = 1024;
        attempt = E24LC16;
        if (!ConfigureEEPROM(&attempt) || !UncheckedReadEEPROM(0, reference, sampleBytes))
            return 0;
    }
    for (;; probe *= 2) {
        unsigned char sample[sampleBytes];
        if (!UncheckedReadEEPROM(static_cast<unsigned short>(probe), sample, sampleBytes))
            return 0;
        const bool repeats = std::memcmp(sample, reference, sampleBytes) == 0;
        if (!repeats && probe != lastProbe)
            continue;
        const unsigned int capacity = repeats ? probe : 2 * lastProbe;
        *eeprom = chipOfCapacity(static_cast<unsigned short>(capacity));
        return 1;
    }
}

int RBaseImplementation::EEPROMConfigured(int device)
{
    SharedObjectLock lock(SharedcurrentEEPROM);
    return eepromEntry(device).configured;
}
