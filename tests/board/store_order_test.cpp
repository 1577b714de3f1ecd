// A process may be killed between any two instructions. Here the processor stops behind each one, and what lies in
// shared memory must be in order there.
#include "board/rbase_implementation.h"
#include "board/rbase_shared_implementation/shared_board_state.h"
#include "shared/arena_check.h"

#include <csignal>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <x86intrin.h>

namespace tests::store_order
{

constexpr unsigned int trapFlag = 0x100;
constexpr int neverStopped = 77;

std::function<bool()> isInOrder;
volatile std::sig_atomic_t stops = 0;

void look(int)
{
    stops = stops + 1;
    if (!isInOrder())
        ::_exit(1);
}

/// The exit status of a child that makes the change: 0 where all was in order behind each instruction.
int stepThrough(const std::function<void()> &change)
{
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGTRAP, look);
        __writeeflags(__readeflags() | trapFlag);
        change();
        __writeeflags(__readeflags() & ~trapFlag);
        ::_exit(stops > 0 ? 0 : neverStopped);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(StoreOrder, NothingIsOutOfOrderBehindAnyInstruction)
{
    constexpr unsigned int bytes = 4096;
    constexpr SharedMemoryArenaID id = {{"Steps", 0}, {"StepsMutex", 0, 2}, bytes};
    constexpr SharedMemoryObjectID name("Object", 7);
    std::vector<unsigned int> words(bytes / sizeof(unsigned int));
    auto *header = reinterpret_cast<SharedMemoryArenaHeader *>(words.data());
    RBaseImplementation board(nullptr, -1, 1, 11);
    R20EEPROM chip = E24LC64;
    ReceiveBuffer batch = {3, 2, {1, 2, 3}};
    const unsigned char next[] = {11, 12, 13, 14};
    const struct {
        const char *what;
        std::function<void()> change;
        std::function<bool()> inOrder;
    } table[] = {
        {"a header", [&] { new (header) SharedMemoryArenaHeader(id, bytes); },
         [&] { return examineArena(header, id, bytes) <= ArenaState::Unfinished; }},
        {"a run that is split", [&] { header->AllocateBlock(200); },
         [&] { return examineArena(header, id, bytes) == ArenaState::Whole; }},
        {"a name", [&] { header->block(0)->Name(name); },
         [&] { return header->block(0)->objectID.name[0] == '\0' || header->block(0)->objectID == name; }},
        {"a chip", [&] { board.ConfigureEEPROM(&chip); },
         [&] { return !eepromEntry(11).configured || std::memcmp(&eepromEntry(11), &chip, sizeof chip) == 0; }},
        {"a batch", [&] { batch.fill(next, sizeof next); },
         [&] { return batch.empty() || batch.bytes[batch.readIndex] == (batch.count == 3 ? 3 : 11); }},
    };
    for (const auto &row : table) {
        isInOrder = row.inOrder;
        const int status = stepThrough(row.change);
        if (status == neverStopped)
            GTEST_SKIP() << "whatever runs this program stops behind no instruction";
        EXPECT_EQ(status, 0) << row.what;
        row.change();
        EXPECT_TRUE(row.inOrder()) << row.what;
    }
}

}  // namespace tests::store_order
