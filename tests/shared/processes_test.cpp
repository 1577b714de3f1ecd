// Several processes and what they share. This program itself does not use the library: it looks at segment and
// semaphores from outside and sends other processes in and out.
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "tests/support/peer.h"

namespace tests
{

namespace
{

constexpr const char *arenaKeyFile = "/tmp/R20SharedMemory";
constexpr const char *setKeyFile = "/tmp/Sem_R20Mutex";

int segment()
{
    const key_t key = ::ftok(arenaKeyFile, 1);
    return key == -1 ? -1 : ::shmget(key, 0, 0);
}

int semaphores()
{
    const key_t key = ::ftok(setKeyFile, 1);
    return key == -1 ? -1 : ::semget(key, 0, 0);
}

int valueOf(int semaphore)
{
    return ::semctl(semaphores(), semaphore, GETVAL);
}

void touch(const char *path)
{
    ::close(::open(path, O_RDWR | O_CREAT, 0666));
}

/// The segment's bytes as they are now.
std::vector<unsigned char> arenaBytes()
{
    void *address = ::shmat(segment(), nullptr, SHM_RDONLY);
    if (address == reinterpret_cast<void *>(-1))
        return {};
    std::vector<unsigned char> bytes(65536);
    std::memcpy(bytes.data(), address, bytes.size());
    ::shmdt(address);
    return bytes;
}

unsigned int u32(const std::vector<unsigned char> &bytes, std::size_t place)
{
    unsigned int value;
    std::memcpy(&value, bytes.data() + place, sizeof value);
    return value;
}

std::string text(const std::vector<unsigned char> &bytes, std::size_t place)
{
    return reinterpret_cast<const char *>(bytes.data() + place);
}

struct Object {
    const char *name;
    std::size_t block;
    unsigned int blocks;
    std::size_t dataBytes;
};
constexpr Object objects[] = {
    {"OutOnCopies", 0, 2, 80}, {"OutOffCopies", 2, 2, 80}, {"R20EEPROMS", 4, 3, 128}, {"R20BUFFERS", 7, 35, 4160}};

std::size_t placeOf(const Object &object)
{
    return 128 + 124 * object.block;
}

class Processes : public testing::Test
{
protected:
    void SetUp() override { expectNothingLeft(); }
    void TearDown() override
    {
        if (semaphores() != -1)
            ::semctl(semaphores(), 0, IPC_RMID);
        if (segment() != -1)
            ::shmctl(segment(), IPC_RMID, nullptr);
    }

    static void expectNothingLeft()
    {
        EXPECT_EQ(segment(), -1);
        EXPECT_EQ(semaphores(), -1);
    }

    static void expectUseCounts(unsigned int count)
    {
        const auto bytes = arenaBytes();
        ASSERT_EQ(bytes.size(), 65536u);
        for (const Object &object : objects)
            EXPECT_EQ(u32(bytes, placeOf(object) + 116), count) << object.name;
    }
};

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

    const auto bytes = arenaBytes();
    ASSERT_EQ(bytes.size(), 65536u);
    EXPECT_EQ(text(bytes, 0), "R20SharedMemory");
    EXPECT_EQ(u32(bytes, 52), 0u);
    EXPECT_EQ(text(bytes, 56), "R20Mutex");
    EXPECT_EQ(u32(bytes, 108), 10u);
    EXPECT_EQ(u32(bytes, 112), 0u);
    EXPECT_EQ(u32(bytes, 116), 65536u);
    EXPECT_EQ(u32(bytes, 120), 1u);
    EXPECT_EQ(u32(bytes, 124), 526u);
    for (const Object &object : objects) {
        const std::size_t run = placeOf(object);
        EXPECT_EQ(text(bytes, run), object.name);
        EXPECT_EQ(u32(bytes, run + 52), 0u);
        EXPECT_EQ(text(bytes, run + 56), "");
        EXPECT_EQ(u32(bytes, run + 108), 1u) << "count of the object's own mutex";
        EXPECT_EQ(u32(bytes, run + 112), 0u);
        EXPECT_EQ(u32(bytes, run + 116), 1u) << "use count";
        EXPECT_EQ(u32(bytes, run + 120), object.blocks);
        for (std::size_t k = 0; k < object.dataBytes; ++k)
            ASSERT_EQ(bytes[run + 124 + k], 0);
    }
    const std::size_t rest = 128 + 124 * 42;
    EXPECT_EQ(u32(bytes, rest + 116), 0u);
    EXPECT_EQ(u32(bytes, rest + 120), 526u - 42u);

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
    const auto bytes = arenaBytes();
    EXPECT_EQ(bytes[placeOf(objects[0]) + 124 + 3 * 5 + 1], 0x10);
    EXPECT_EQ(bytes[placeOf(objects[1]) + 124 + 3 * 5 + 1], 0x10);
    const unsigned char chip[] = {32, 2, 0xFF, 0x1F, 0x51, 0, 1, 0};
    EXPECT_EQ(std::memcmp(bytes.data() + placeOf(objects[2]) + 124 + 15 * 8, chip, sizeof chip), 0);
}

TEST_F(Processes, TheSecondFindsWhatTheFirstMade)
{
    Peer first;
    first.ask("configure 3");
    first.ask("output 2 0 1");
    {
        Peer second;
        expectUseCounts(2);
        EXPECT_EQ(valueOf(0), 2);
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
    expectUseCounts(1);
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

TEST_F(Processes, StartTogetherAndShareOneOfEach)
{
    constexpr std::size_t together = 8;
    for (int round = 0; round < 15; ++round) {
        std::vector<Peer> peers;
        for (std::size_t k = 0; k < together; ++k)
            peers.emplace_back(PEER_PROGRAM, Peer::Start::held);
        for (Peer &peer : peers)
            peer.release();
        for (Peer &peer : peers) {
            peer.waitUntilReady();
            EXPECT_EQ(peer.ask("attached"), "yes");
        }
        expectUseCounts(together);
        EXPECT_EQ(valueOf(0), static_cast<int>(together));
        for (std::size_t k = 0; k < together; ++k)
            peers[k].tell("output 1 " + std::to_string(k) + " 1");
        for (Peer &peer : peers)
            peer.answer();
        EXPECT_EQ(peers[0].ask("on 1"), "FF00000000");
        for (Peer &peer : peers)
            peer.leave();
        for (Peer &peer : peers)
            EXPECT_TRUE(peer.wait());
        expectNothingLeft();
    }
}

TEST_F(Processes, StartWhileTheLastOneLeaves)
{
    Peer first;
    std::vector<Peer> last;
    last.push_back(std::move(first));
    for (int round = 0; round < 60; ++round) {
        Peer next(PEER_PROGRAM, Peer::Start::held);
        if (round % 2) {
            next.release();
            last.back().leave();
        } else {
            last.back().leave();
            next.release();
        }
        next.waitUntilReady();
        EXPECT_TRUE(last.back().wait());
        EXPECT_EQ(next.ask("attached"), "yes");
        next.ask("output 1 7 1");
        EXPECT_EQ(valueOf(0), 1);
        EXPECT_NE(segment(), -1);
        last.clear();
        last.push_back(std::move(next));
    }
    EXPECT_TRUE(last.back().quit());
    expectNothingLeft();
}

#ifdef OTHER_WIDTH_PEER
TEST_F(Processes, Of32And64BitsShareOneArena)
{
    Peer own;
    Peer other(OTHER_WIDTH_PEER);
    expectUseCounts(2);
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

TEST_F(Processes, AMakerThatDiedIsFollowedByWhoeverComesNext)
{
    touch(arenaKeyFile);
    touch(setKeyFile);
    // Nothing of a header, a part of one, and one that lacks only its last store.
    for (std::size_t written : {0u, 7u, 60u, 116u, 124u}) {
        const int set = ::semget(::ftok(setKeyFile, 1), 11, IPC_CREAT | 0666);
        ASSERT_NE(set, -1);
        const int id = ::shmget(::ftok(arenaKeyFile, 1), 65536, IPC_CREAT | 0666);
        auto *arena = static_cast<unsigned char *>(::shmat(id, nullptr, 0));
        unsigned char header[128] = {};
        std::strcpy(reinterpret_cast<char *>(header), "R20SharedMemory");
        std::strcpy(reinterpret_cast<char *>(header + 56), "R20Mutex");
        header[108] = 10;
        header[118] = 1;
        header[120] = 1;
        std::memcpy(arena, header, written);
        ::shmdt(arena);
        Peer peer;
        EXPECT_EQ(peer.ask("attached"), "yes") << written;
        expectUseCounts(1);
        EXPECT_EQ(valueOf(0), 1);
        EXPECT_TRUE(peer.quit());
        expectNothingLeft();
    }
}

TEST_F(Processes, ARunThatWasAllocatedButNeverNamedIsUsedAgain)
{
    Peer first;
    auto *arena = static_cast<unsigned char *>(::shmat(segment(), nullptr, 0));
    std::memset(arena + placeOf(objects[2]), 0, 50);  // as a maker leaves it that dies before the name
    Peer second;
    EXPECT_EQ(std::string(reinterpret_cast<char *>(arena + placeOf(objects[2]))), "R20EEPROMS");
    EXPECT_EQ(second.ask("attached"), "yes");
    ::shmdt(arena);
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
        auto *arena = static_cast<unsigned char *>(::shmat(segment(), nullptr, 0));
        std::memcpy(arena + damage.place, &damage.value, sizeof damage.value);
        ::shmdt(arena);
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
    touch(arenaKeyFile);
    for (std::size_t leadingZeros : {0u, 128u, 252u, 65535u}) {
        const int id = ::shmget(::ftok(arenaKeyFile, 1), 65536, IPC_CREAT | 0666);
        auto *theirs = static_cast<unsigned char *>(::shmat(id, nullptr, 0));
        std::memset(theirs + leadingZeros, 0x5A, 65536 - leadingZeros);
        ::shmdt(theirs);
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

TEST_F(Processes, LoadingUnloadingAndLoadingAgainStartsAfresh)
{
    for (int round = 0; round < 2; ++round) {
        void *library = ::dlopen(SHARED_LIBRARY, RTLD_NOW);
        ASSERT_TRUE(library) << ::dlerror();
        expectUseCounts(1);
        EXPECT_EQ(valueOf(0), 1);
        EXPECT_EQ(::dlclose(library), 0);
        expectNothingLeft();
    }
}

}  // namespace

}  // namespace tests
