// An arena and its tables with anything in them: nothing is read or written outside, and every walk ends.
#include "board/rbase_shared_implementation/shared_board_state.h"
#include "shared/arena_check.h"
#include "tests/fuzz/fuzz_driver.h"

#include <memory>

namespace fuzz
{

namespace
{

constexpr SharedMemoryArenaID askedFor = {{"R20SharedMemory", 0}, {"R20Mutex", 0, 10}, 65536};

/// An attached segment of exactly this many bytes, its arena whole so far. Only an attached one has a size to trust.
class AttachedArena final : public SharedMemory
{
public:
    explicit AttachedArena(unsigned int bytes) : SharedMemory(askedFor), memory(new unsigned char[bytes]())
    {
        size = bytes;
        address = memory.get();
        element.arenaHeader = new (address) SharedMemoryArenaHeader(askedFor, bytes);
        element.sharedMemory = this;
        element.next = SharedMemoryLocalListElement::SharedMemoryLocalListStart;
        SharedMemoryLocalListElement::SharedMemoryLocalListStart = &element;
    }
    ~AttachedArena() override { SharedMemoryLocalListElement::SharedMemoryLocalListStart = element.next; }
    bool Create() override { return false; }
    bool Delete() override { return false; }
    bool Lock() override { return false; }
    bool UnLock() override { return false; }
    bool MeFirst() override { return false; }

    void damage(Input &input)
    {
        constexpr unsigned int firstRuns = sizeof(SharedMemoryArenaHeader) + 8 * sizeof(SharedMemoryBlockHeader);
        for (unsigned int changes = input.upTo(12); changes; --changes) {
            const unsigned int place = input.upTo(3) ? input.upTo(firstRuns) % size : input.upTo(65535) % size;
            input.fill(memory.get() + place, std::min(input.upTo(4), size - place));
        }
    }

    std::unique_ptr<unsigned char[]> memory;
    SharedMemoryLocalListElement element;
};

void useArena(Input &input)
{
    constexpr unsigned int smallest = 252;  // both headers
    AttachedArena arena(input.upTo(1) ? 65536 : smallest + input.upTo(4000));
    SharedMemoryArenaHeader *header = arena.element.arenaHeader;
    const SharedMemoryObjectID objects[] = {{"OutOnCopies", 0}, {"R20EEPROMS", 0}, {"R20BUFFERS", 0}, {"", 0}};
    for (unsigned int steps = input.upTo(12); steps; --steps) {
        arena.damage(input);
        const SharedMemoryObjectID &object = objects[input.upTo(3)];
        if (SharedMemoryBlockHeader *found = SharedMemoryLocalListElement::FindSharedMemoryObject(header, object))
            std::memset(found->data(), 0x5A, found->blockCount * sizeof *found - sizeof *found);
        header->ReclaimUnnamedRuns();
        const unsigned int bytes = sizeof(SharedMemoryBlockHeader) + input.upTo(6000);
        if (SharedMemoryBlockHeader *made = header->AllocateBlock(bytes)) {
            std::memset(made->data(), 0xA5, bytes - sizeof *made);
            made->Name(object);
        }
        header->AllocateBlock(input.take<unsigned int>());
        examineArena(header, askedFor, arena.size);
    }
}

/// The data of one shared object, of exactly their size, in place of those in the arena.
class Table
{
public:
    Table(SharedMemoryObject &handle, std::size_t bytes, Input &input)
        : handle_(handle), original_(handle.object),
          memory_(new unsigned char[sizeof(SharedMemoryBlockHeader) + bytes]())
    {
        handle.object = reinterpret_cast<SharedMemoryBlockHeader *>(memory_.get());
        input.fill(memory_.get() + sizeof(SharedMemoryBlockHeader), bytes);
    }
    ~Table() { handle_.object = original_; }
    Table(const Table &) = delete;
    Table &operator=(const Table &) = delete;

private:
    SharedMemoryObject &handle_;
    SharedMemoryBlockHeader *original_;
    std::unique_ptr<unsigned char[]> memory_;
};

void useTables(Input &input)
{
    Input wellBehaved(nullptr, 0);
    driver = {};
    driver.input = &wellBehaved;
    driver.model = 3;
    driver.endlessBytes = input.upTo(7);
    const int deviceNo = static_cast<int>(input.upTo(15));
    SorvaneUSB board;
    openBoard(board, deviceNo);
    // A single device's entry comes first in the input, so that few bytes reach it.
    const Table on(SharedOutOnCopy, sizeof(OutputPatterns), input);
    const Table off(SharedOutOffCopy, sizeof(OutputPatterns), input);
    const Table chips(SharedcurrentEEPROM, sizeof(EEPROMTable), input);
    const Table batches(SharedserialRxBuffer, sizeof(ReceiveBuffers), input);
    ReceiveBuffer &batch = receiveBuffer(deviceNo);
    batch.count = input.take<std::uint16_t>();
    batch.readIndex = input.take<std::uint16_t>();
    eepromEntry(deviceNo).eeprom = input.take<R20EEPROM>();
    board.SetOnPeriodOutputBit(usbOutputByte4, 5, 1);
    board.SetOffPeriodOutputBit(usbOutputByte0, 0, 0);
    board.SetOutputBit(usbOutput37, 1);
    unsigned char data[70];
    board.ReadEEPROM(input.take<unsigned short>(), data, sizeof data);
    board.WriteEEPROM(input.take<unsigned short>(), data, sizeof data);
    for (int k = 0; k < 3; ++k) {
        unsigned short word;
        unsigned char timestamp;
        unsigned int received;
        board.ReceiveByteWithTimestamp9BitData(usbSerialPort0, &word, &timestamp, &received);
        board.ReceiveByteWithTimestamp(usbSerialPort1, data, &timestamp, &received);
    }
}

}  // namespace

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    if (input.upTo(1))
        fuzz::useArena(input);
    else
        fuzz::useTables(input);
    return 0;
}
