// How processes come, share and go. This program does not use the library: it looks at segment and semaphores from
// outside and sends other processes in and out.
#include "tests/processes/outside.h"

#include <algorithm>
#include <dlfcn.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tests::processes
{

/// The names, numbers and sizes in header and runs are the report's to judge.
TEST_F(Processes, TheFirstLaysOutTheArenaByteForByte)
{
    const mode_t before = ::umask(0);
    Peer peer;
    ::umask(before);
    expectShared(1);
    EXPECT_EQ(reportArena().attachments, 1u);
    shmid_ds status;
    semid_ds set;
    ASSERT_EQ(::shmctl(segment(), IPC_STAT, &status), 0);
    ASSERT_EQ(::semctl(semaphores(), 0, IPC_STAT, &set), 0);
    EXPECT_EQ(status.shm_perm.mode & 0777, 0666);
    EXPECT_EQ(set.sem_perm.mode & 0777, 0666);
    for (int semaphore = 0; semaphore <= allMutexes; ++semaphore)
        EXPECT_EQ(valueOf(semaphore), 1) << semaphore;
    {
        const Attached arena;
        const struct {
            std::size_t run;
            const char *name;
            std::ptrdiff_t dataBytes;
        } objects[] = {{patternsOn, "OutOnCopies", 80},
                       {patternsOff, "OutOffCopies", 80},
                       {chips, "R20EEPROMS", 128},
                       {batches, "R20BUFFERS", 4160}};
        for (const auto &object : objects) {
            const unsigned char *data = arena.bytes + object.run + blockBytes;
            EXPECT_EQ(arena.text(object.run), object.name);
            EXPECT_EQ(std::count(data, data + object.dataBytes, 0), object.dataBytes);
        }
        EXPECT_EQ(arena.u32(freeBlocks + useCount), 0u);
        EXPECT_EQ(arena.u32(freeBlocks + blockCount), 526u - 42u);

        EXPECT_EQ(peer.ask("3 bit 12 1"), "1");
        peer.ask("15 do ConfigureEEPROM");
        EXPECT_EQ(arena.bytes[patternsOn + blockBytes + 3 * 5 + 1], 0x10);
        EXPECT_EQ(arena.bytes[patternsOff + blockBytes + 3 * 5 + 1], 0x10);
        const unsigned char chip[] = {32, 2, 0xFF, 0x1F, 0x51, 0, 1, 0};
        EXPECT_TRUE(std::equal(chip, chip + 8, arena.bytes + chips + blockBytes + 15 * 8));
    }
    EXPECT_EQ(peer.ask("static"), "yes") << "set up before the program's own static objects";
    EXPECT_TRUE(peer.quit());
    expectNothingLeft();
}

INSTANTIATE_TEST_SUITE_P(Peers, BothWidths, testing::ValuesIn(widths()), nameOfWidth);

TEST_P(BothWidths, TheSecondFindsWhatTheFirstMade)
{
    Peer first(program(0));
    first.ask("3 do ConfigureEEPROM");
    first.ask("2 bit 0 1");
    Peer second(program(1));
    expectShared(2);
    EXPECT_EQ(second.ask("3 configured"), "1");
    EXPECT_EQ(second.ask("4 configured"), "0");
    EXPECT_EQ(second.ask("2 on"), "0100000000");
    second.ask("2 bit 37 1");
    EXPECT_EQ(first.ask("2 on"), "0100000020");
    EXPECT_TRUE(first.quit());
    EXPECT_EQ(valueOf(0), 1);
    EXPECT_EQ(second.ask("2 on"), "0100000020") << "the arena outlives its maker";
    EXPECT_TRUE(second.quit());
    expectNothingLeft();
    Peer next;
    EXPECT_EQ(next.ask("3 configured"), "0") << "a new arena starts from zeros";
    expectShared(1);
}

TEST_P(BothWidths, ALockIsWaitedForAndInheritedFromAKilledHolder)
{
    Peer holder(program(0)), waiter(program(1));
    waiter.ask("do open");
    EXPECT_EQ(holder.ask("lock 1"), "ok");
    waiter.tell("bit 5 1");
    EXPECT_FALSE(waiter.answers(100)) << "both pattern locks are needed";
    EXPECT_EQ(holder.ask("unlock 1"), "ok");
    EXPECT_EQ(waiter.answer(), "1");
    EXPECT_EQ(holder.ask("lock 2"), "ok");
    waiter.tell("bit 6 1");
    EXPECT_FALSE(waiter.answers(100));
    holder.kill();
    EXPECT_EQ(waiter.answer(), "1");
    EXPECT_EQ(waiter.ask("on"), "6000000000");
    for (int semaphore = 1; semaphore <= allMutexes; ++semaphore)
        EXPECT_EQ(valueOf(semaphore), 1);
    EXPECT_TRUE(waiter.quit());
    expectOnlyRegistrationsLeft("a killed process leaves its registration", 1, 1);
    Peer next;
    EXPECT_EQ(next.ask("attached"), "yes");
}

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

TEST_F(Processes, AForkedChildTearsNothingDownAndRegistersNowhereForEver)
{
    Peer peer;
    for (const char *end : {"fork exit 4", "fork unseen 4"}) {
        EXPECT_EQ(peer.ask(end), "exited");
        expectShared(1, "it was not the last one");
        EXPECT_EQ(valueOf(0), 1) << end;
    }
    EXPECT_EQ(peer.ask("lock 1"), "ok");
    ::semctl(semaphores(), 0, IPC_RMID);
    Peer next;
    EXPECT_EQ(peer.ask("fork exit 4"), "exited");
    EXPECT_EQ(valueOf(0), 2) << "its parent and the next";
    EXPECT_TRUE(next.quit());
    EXPECT_TRUE(peer.quit());
    expectNothingLeft();
}

TEST_F(Processes, ASetThatVanishesIsLookedUpByItsName)
{
    Peer peer;
    peer.ask("do open");  // which takes the lock, too
    ::semctl(semaphores(), 0, IPC_RMID);
    Peer next;  // makes a new one
    EXPECT_EQ(next.ask("lock 3"), "ok");
    peer.tell("do ConfigureEEPROM");
    EXPECT_FALSE(peer.answers(100)) << "it found the new set and waits for its mutex";
    EXPECT_EQ(next.ask("unlock 3"), "ok");
    peer.answer();
    EXPECT_EQ(valueOf(0), 2) << "it is registered in the new set";
    EXPECT_TRUE(next.quit());
    EXPECT_TRUE(peer.quit());
    expectNothingLeft();
}

TEST_F(Processes, WithoutASetTheLocksAreDoneWithout)
{
    Peer peer;
    ::semctl(semaphores(), 0, IPC_RMID);
    EXPECT_EQ(peer.ask("bit 0 1"), "1");
    EXPECT_EQ(peer.ask("on"), "0100000000");
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
