// How processes come, share and go. This program does not use the library: it looks at segment and semaphores from
// outside and sends other processes in and out.
#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "tests/shared/outside.h"

namespace tests::processes
{

TEST_F(Processes, TheFirstLaysOutTheArenaByteForByte)
{
    const mode_t before = ::umask(0);
    Peer peer;
    ::umask(before);
    shmid_ds status;
    ASSERT_EQ(::shmctl(segment(), IPC_STAT, &status), 0);
    EXPECT_EQ(status.shm_segsz, 65536u);
    EXPECT_EQ(status.shm_perm.mode & 0777, 0666);
    EXPECT_EQ(status.shm_nattch, 1u);

    {
        const Attached arena;
        EXPECT_EQ(arena.text(0), "R20SharedMemory");
        EXPECT_EQ(arena.u32(52), 0u);
        EXPECT_EQ(arena.text(56), "R20Mutex");
        const unsigned int numbers[] = {10, 0, 65536, 1, 526};
        EXPECT_EQ(std::memcmp(arena.bytes + 108, numbers, sizeof numbers), 0);
        for (const Object &object : objects) {
            const std::size_t run = object.place();
            EXPECT_EQ(arena.text(run), object.name);
            EXPECT_EQ(arena.u32(run + 52), 0u);
            EXPECT_EQ(arena.text(run + 56), "");
            EXPECT_EQ(arena.u32(run + 108), 1u) << "count of the object's own mutex";
            EXPECT_EQ(arena.u32(run + 112), 0u);
            EXPECT_EQ(arena.u32(run + 116), 1u) << "use count";
            EXPECT_EQ(arena.u32(run + 120), object.blocks);
            for (std::size_t k = 0; k < object.dataBytes; ++k)
                ASSERT_EQ(arena.bytes[run + 124 + k], 0);
        }
        const std::size_t rest = 128 + 124 * 42;
        EXPECT_EQ(arena.u32(rest + 116), 0u);
        EXPECT_EQ(arena.u32(rest + 120), 526u - 42u);
    }

    semid_ds set;
    ASSERT_EQ(::semctl(semaphores(), 0, IPC_STAT, &set), 0);
    EXPECT_EQ(set.sem_nsems, 11u);
    EXPECT_EQ(set.sem_perm.mode & 0777, 0666);
    for (int semaphore = 0; semaphore <= 10; ++semaphore)
        EXPECT_EQ(valueOf(semaphore), 1) << semaphore;
    EXPECT_EQ(peer.ask("static"), "yes") << "set up before the program's own static objects";
    EXPECT_TRUE(peer.quit());
    expectNothingLeft();
}

TEST_F(Processes, TheEntriesOfADeviceLieWhereTheTablesSay)
{
    Peer peer;
    peer.ask("output 3 12 1");
    peer.ask("configure 15");
    const Attached arena;
    EXPECT_EQ(arena.bytes[objects[0].place() + 124 + 3 * 5 + 1], 0x10);
    EXPECT_EQ(arena.bytes[objects[1].place() + 124 + 3 * 5 + 1], 0x10);
    const unsigned char chip[] = {32, 2, 0xFF, 0x1F, 0x51, 0, 1, 0};
    EXPECT_EQ(std::memcmp(arena.bytes + objects[2].place() + 124 + 15 * 8, chip, sizeof chip), 0);
}

TEST_F(Processes, TheSecondFindsWhatTheFirstMade)
{
    Peer first;
    first.ask("configure 3");
    first.ask("output 2 0 1");
    {
        Peer second;
        expectShared(2);
        EXPECT_EQ(second.ask("configured 3"), "1");
        EXPECT_EQ(second.ask("configured 4"), "0");
        EXPECT_EQ(second.ask("on 2"), "0100000000");
        second.ask("output 2 8 1");
        EXPECT_EQ(first.ask("on 2"), "0101000000");
        EXPECT_TRUE(first.quit());
        EXPECT_EQ(valueOf(0), 1);
        EXPECT_EQ(second.ask("on 2"), "0101000000") << "the arena outlives its maker";
        EXPECT_TRUE(second.quit());
    }
    expectNothingLeft();
    Peer next;
    EXPECT_EQ(next.ask("configured 3"), "0") << "a new arena starts from zeros";
    expectShared(1);
}

TEST_F(Processes, ALockIsWaitedForAndInheritedFromAKilledHolder)
{
    Peer holder, waiter;
    EXPECT_EQ(holder.ask("lock 1"), "ok");
    waiter.tell("output 0 5 1");
    EXPECT_FALSE(waiter.answers(100)) << "both pattern locks are needed";
    EXPECT_EQ(holder.ask("unlock 1"), "ok");
    EXPECT_EQ(waiter.answer(), "0");  // sent, to no board
    EXPECT_EQ(holder.ask("lock 2"), "ok");
    waiter.tell("output 0 6 1");
    EXPECT_FALSE(waiter.answers(100));
    holder.kill();
    EXPECT_EQ(waiter.answer(), "0");
    EXPECT_EQ(waiter.ask("on 0"), "6000000000");
    for (int semaphore = 1; semaphore <= 10; ++semaphore)
        EXPECT_EQ(valueOf(semaphore), 1);
    EXPECT_TRUE(waiter.quit());
    EXPECT_EQ(segment(), -1);
    EXPECT_EQ(valueOf(0), 1) << "a killed process leaves its registration";
    Peer next;
    EXPECT_EQ(next.ask("attached"), "yes");
}

#ifdef OTHER_WIDTH_PEER
TEST_F(Processes, Of32And64BitsShareOneArena)
{
    Peer own;
    Peer other(OTHER_WIDTH_PEER);
    expectShared(2);
    other.ask("configure 9");
    EXPECT_EQ(own.ask("configured 9"), "1");
    own.ask("output 9 37 1");
    EXPECT_EQ(other.ask("on 9"), "0000000020");
    EXPECT_EQ(own.ask("lock 4"), "ok");
    other.tell("lock 4");
    EXPECT_FALSE(other.answers(100));
    own.kill();
    EXPECT_EQ(other.answer(), "ok");
    EXPECT_TRUE(other.quit());
    Peer next;
    EXPECT_EQ(next.ask("attached"), "yes");
}
#endif

TEST_F(Processes, AFullCountOfRegistrationsCostsNobodyTheLocks)
{
    Peer first;
    ASSERT_EQ(::semctl(semaphores(), 0, SETVAL, 32767), 0);  // of processes that were killed
    Peer second;
    EXPECT_EQ(second.ask("lock 1"), "ok");
    EXPECT_EQ(valueOf(2), 0);
    EXPECT_TRUE(second.quit());
    EXPECT_EQ(valueOf(0), 32767) << "it takes no registration away";
    EXPECT_EQ(valueOf(2), 1);
}

TEST_F(Processes, AChildThatWasForkedTearsNothingDown)
{
    Peer peer;
    EXPECT_EQ(peer.ask("fork"), "ok");
    EXPECT_EQ(valueOf(0), 1);
    EXPECT_NE(segment(), -1);
    EXPECT_EQ(peer.ask("lock 1"), "ok");
    ::semctl(semaphores(), 0, IPC_RMID);
    Peer next;
    EXPECT_EQ(peer.ask("fork"), "ok");
    EXPECT_EQ(valueOf(0), 1) << "nor does one that finds a set made anew register for ever";
    EXPECT_TRUE(next.quit());
    EXPECT_TRUE(peer.quit());
    expectNothingLeft();
}

TEST_F(Processes, ASetThatVanishesIsLookedUpByItsName)
{
    Peer peer;
    ::semctl(semaphores(), 0, IPC_RMID);
    Peer next;  // makes a new one
    EXPECT_EQ(next.ask("lock 3"), "ok");
    peer.tell("configure 1");
    EXPECT_FALSE(peer.answers(100)) << "it found the new set and waits for its mutex";
    EXPECT_EQ(next.ask("unlock 3"), "ok");
    EXPECT_EQ(peer.answer(), "0");
    EXPECT_EQ(valueOf(0), 2) << "it is registered in the new set";
    EXPECT_TRUE(next.quit());
    EXPECT_TRUE(peer.quit());
    expectNothingLeft();
}

TEST_F(Processes, WithoutASetTheLocksAreDoneWithout)
{
    Peer peer;
    ::semctl(semaphores(), 0, IPC_RMID);
    peer.ask("output 1 0 1");
    EXPECT_EQ(peer.ask("on 1"), "0100000000");
    EXPECT_EQ(semaphores(), -1) << "only a process that starts makes a set";
    EXPECT_TRUE(peer.quit());
    expectNothingLeft();
}

TEST_F(Processes, LoadingUnloadingAndLoadingAgainStartsAfresh)
{
    for (int round = 0; round < 2; ++round) {
        void *library = ::dlopen(SHARED_LIBRARY, RTLD_NOW);
        ASSERT_TRUE(library) << ::dlerror();
        expectShared(1);
        EXPECT_EQ(::dlclose(library), 0);
        expectNothingLeft();
    }
}

TEST_F(Processes, AForkedChildThatLoadsTheLibraryAgainLeavesNothing)
{
    void *library = ::dlopen(SHARED_LIBRARY, RTLD_NOW);
    int ends[2];
    ASSERT_TRUE(library && ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0);
    char token = 0;
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        const bool detached = ::dlclose(library) == 0 && reportArena().attachments == 1;
        library = ::dlopen(SHARED_LIBRARY, RTLD_NOW);
        const bool toldAndParentLeft = ::write(ends[1], &token, 1) == 1 && ::read(ends[1], &token, 1) == 0;
        ::_exit(detached && library && toldAndParentLeft && ::dlclose(library) == 0 ? 0 : 1);
    }
    ::close(ends[1]);
    EXPECT_EQ(::read(ends[0], &token, 1), 1);
    expectShared(2);
    EXPECT_EQ(::dlclose(library), 0);
    ::close(ends[0]);
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    expectNothingLeft();
}

}  // namespace tests::processes
