// What processes find that others left behind: half made, damaged, or not theirs.
#include "tests/processes/outside.h"

#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/sem.h>
#include <sys/shm.h>
#include <unistd.h>

namespace tests::leftovers
{

TEST_F(Processes, AMakerThatDiedIsFollowedByWhoeverComesNext)
{
    ::close(::open(setKeyFile, O_RDWR | O_CREAT, 0666));
    // Nothing of a header, a part of one, and one that lacks only its last store.
    for (std::size_t written : {0u, 7u, 60u, 116u, 124u}) {
        ASSERT_NE(::semget(::ftok(setKeyFile, 1), allMutexes + 1, IPC_CREAT | 0666), -1);
        unsigned char header[128] = {};
        std::memcpy(header, "R20SharedMemory", sizeof "R20SharedMemory");
        std::memcpy(header + 56, "R20Mutex", sizeof "R20Mutex");
        header[108] = allMutexes;
        header[118] = 1;
        header[120] = 1;
        std::memcpy(Attached(makeSegment()).bytes, header, written);
        Peer peer;
        EXPECT_EQ(peer.ask("attached"), "yes") << written;
        expectShared(1);
        EXPECT_TRUE(peer.quit());
        expectNothingLeft();
    }
}

TEST_F(Processes, WhoIsNotAloneOnAnUnfinishedArenaDoesNotKeepTheNextFromBuildingIt)
{
    auto looking = std::make_unique<Attached>(makeSegment());
    Peer first;
    EXPECT_EQ(first.ask("attached"), "no") << "the other may be building it";
    looking.reset();
    Peer next;
    EXPECT_EQ(next.ask("attached"), "yes");
    EXPECT_TRUE(first.quit());
    EXPECT_EQ(next.ask("attached"), "yes");
    EXPECT_TRUE(next.quit());
    expectNothingLeft();
}

TEST_F(Processes, ARunThatWasAllocatedButNeverNamedIsUsedAgain)
{
    Peer first;
    first.ask("3 do ConfigureEEPROM");
    const Attached arena;
    std::memset(arena.bytes + chips, 0, 50);  // as a maker leaves it that dies before the name
    Peer second;
    EXPECT_EQ(arena.text(chips), "R20EEPROMS");
    EXPECT_EQ(second.ask("attached"), "yes");
    EXPECT_EQ(second.ask("3 configured"), "0") << "no object starts with what its run held before";
}

TEST_F(Processes, AnObjectThatIsTooShortIsNotUsed)
{
    Peer first;
    const Attached arena;
    arena.put(chips + blockCount, 1);
    std::memset(arena.bytes + chips + blockBytes, 0, blockBytes);
    arena.put(chips + blockBytes + blockCount, 2);
    Peer second;
    second.ask("4 do ConfigureEEPROM");
    EXPECT_EQ(second.ask("4 configured"), "1") << "it has a table of its own";
    EXPECT_EQ(first.ask("4 configured"), "0");
}

TEST_F(Processes, ADamagedArenaIsNotUsedAndGoesWithTheLastOne)
{
    const struct {
        const char *what;
        std::size_t place;
        unsigned int value;
    } damages[] = {
        {"a run of length 0", patternsOff + blockCount, 0}, {"a run past the end", freeBlocks + blockCount, 485},
        {"a run of absurd length", runs + blockCount, ~0U}, {"a block count beyond the segment", 124, 0x00FFFFFF},
        {"a header without its build count", 120, 0},
    };
    for (const auto &damage : damages) {
        SCOPED_TRACE(damage.what);
        Peer first;
        Attached().put(damage.place, damage.value);
        Peer second;
        EXPECT_EQ(second.ask("attached"), "no");
        EXPECT_EQ(second.ask("4 configured"), "0");
        EXPECT_EQ(second.ask("4 bit 1 1"), "1");
        EXPECT_EQ(second.ask("4 on"), "0200000000") << "it drives its boards on tables of its own";
        EXPECT_EQ(second.ask("4 configured"), "1");
        EXPECT_TRUE(first.quit());
        EXPECT_NE(segment(), -1);
        EXPECT_TRUE(second.quit());
        expectNothingLeft();
    }
}

TEST_F(Processes, ASegmentOfSomebodyElseIsLeftAlone)
{
    const struct {
        std::size_t bytes, leadingZeros;
    } segments[] = {{65536, 0}, {65536, 128}, {65536, 252}, {65536, 65535}, {4096, 4096}};
    for (const auto &row : segments) {
        SCOPED_TRACE(row.leadingZeros);
        const int id = makeSegment(row.bytes);
        std::memset(Attached(id).bytes + row.leadingZeros, 0x5A, row.bytes - row.leadingZeros);
        Peer peer;
        EXPECT_EQ(peer.ask("attached"), "no");
        shmid_ds status;
        ASSERT_EQ(::shmctl(id, IPC_STAT, &status), 0);
        EXPECT_EQ(status.shm_nattch, 0u);
        EXPECT_EQ(peer.ask("bit 12 1"), "1");
        EXPECT_EQ(peer.ask("on"), "0010000000") << "it drives its boards on tables of its own";
        EXPECT_TRUE(peer.quit());
        EXPECT_EQ(segment(), id) << "never removed";
        EXPECT_EQ(semaphores(), -1);
        ::shmctl(id, IPC_RMID, nullptr);
    }
}

TEST_F(Processes, ASetOfSomebodyElseIsLeftAlone)
{
    ::close(::open(setKeyFile, O_RDWR | O_CREAT, 0666));
    const int id = ::semget(::ftok(setKeyFile, 1), 1, IPC_CREAT | 0666);
    Peer peer;
    EXPECT_EQ(peer.ask("attached"), "no");
    EXPECT_TRUE(peer.quit());
    EXPECT_EQ(semaphores(), id);
    EXPECT_EQ(valueOf(0), 0);
}

}  // namespace tests::leftovers
