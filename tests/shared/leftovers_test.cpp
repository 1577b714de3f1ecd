// What processes find that others left behind: half made, damaged, or not theirs.
#include <fstream>
#include <memory>

#include "tests/shared/outside.h"

namespace tests::leftovers
{

TEST_F(Processes, AMakerThatDiedIsFollowedByWhoeverComesNext)
{
    ::close(::open(setKeyFile, O_RDWR | O_CREAT, 0666));
    // Nothing of a header, a part of one, and one that lacks only its last store.
    for (std::size_t written : {0u, 7u, 60u, 116u, 124u}) {
        ASSERT_NE(::semget(::ftok(setKeyFile, 1), 11, IPC_CREAT | 0666), -1);
        unsigned char header[128] = {};
        std::strcpy(reinterpret_cast<char *>(header), "R20SharedMemory");
        std::strcpy(reinterpret_cast<char *>(header + 56), "R20Mutex");
        header[108] = 10;
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
    EXPECT_EQ(first.ask("attached"), "no");
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
    const Attached arena;
    std::memset(arena.bytes + objects[2].place(), 0, 50);  // as a maker leaves it that dies before the name
    Peer second;
    EXPECT_EQ(arena.text(objects[2].place()), "R20EEPROMS");
    EXPECT_EQ(second.ask("attached"), "yes");
}

struct Damage {
    const char *what;
    std::size_t place;
    unsigned int value;
};

TEST_F(Processes, ADamagedArenaIsNotUsedAndGoesWithTheLastOne)
{
    const Damage table[] = {
        {"a run of length 0", 128 + 124 * 2 + 120, 0},     {"a run past the end", 128 + 124 * 42 + 120, 485},
        {"a run of absurd length", 128 + 120, 0xFFFFFFFF}, {"a block count beyond the segment", 124, 0x00FFFFFF},
        {"a header without its build count", 120, 0},
    };
    for (const Damage &damage : table) {
        SCOPED_TRACE(damage.what);
        Peer first;
        std::memcpy(Attached().bytes + damage.place, &damage.value, sizeof damage.value);
        Peer second;
        EXPECT_EQ(second.ask("attached"), "no");
        second.ask("output 4 1 1");
        EXPECT_EQ(second.ask("on 4"), "0200000000") << "it drives its boards on tables of its own";
        second.ask("configure 4");
        EXPECT_EQ(second.ask("configured 4"), "1");
        EXPECT_TRUE(first.quit());
        EXPECT_NE(segment(), -1);
        EXPECT_TRUE(second.quit());
        expectNothingLeft();
    }
}

TEST_F(Processes, ASegmentOfSomebodyElseIsLeftAlone)
{
    for (std::size_t leadingZeros : {0u, 128u, 252u, 65535u}) {
        const int id = makeSegment();
        std::memset(Attached(id).bytes + leadingZeros, 0x5A, 65536 - leadingZeros);
        Peer peer;
        EXPECT_EQ(peer.ask("attached"), "no") << leadingZeros;
        shmid_ds status;
        ASSERT_EQ(::shmctl(id, IPC_STAT, &status), 0);
        EXPECT_EQ(status.shm_nattch, 0u);
        EXPECT_TRUE(peer.quit());
        EXPECT_EQ(::shmctl(id, IPC_STAT, &status), 0) << "never removed";
        EXPECT_EQ(semaphores(), -1);
        ::shmctl(id, IPC_RMID, nullptr);
    }
}

TEST_F(Processes, KeyFilesAreNotWrittenThroughALink)
{
    ::unlink(arenaKeyFile);
    const char *target = "/tmp/not_ours";
    ASSERT_EQ(::symlink(target, arenaKeyFile), 0);
    {
        Peer peer;
        EXPECT_EQ(peer.ask("attached"), "no");
        EXPECT_NE(::access(target, F_OK), 0) << "nothing is made behind a link";
    }
    ::unlink(arenaKeyFile);
    std::ofstream(arenaKeyFile) << "content";
    Peer peer;
    EXPECT_EQ(peer.ask("attached"), "yes");
    std::string content;
    std::ifstream(arenaKeyFile) >> content;
    EXPECT_EQ(content, "content");
}

}  // namespace tests::leftovers
