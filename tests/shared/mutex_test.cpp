// Mutexes and their sets inside one process, under a name of their own.
#include "shared/mutex_set.h"

#include <cstring>
#include <gtest/gtest.h>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tests::mutex
{

int setOf(const char *keyFile, int project)
{
    const key_t key = ::ftok(keyFile, project);
    return key == -1 ? -1 : ::semget(key, 0, 0);
}

TEST(Mutexes, AreOneObjectAProcessAndLeaveWithTheirLastUser)
{
    const MutexID id("TestSet", 0, 3);
    Mutex *first = Mutex::GetLocalMutex(id);
    EXPECT_EQ(Mutex::GetLocalMutex(id), first);
    EXPECT_EQ(first->localCount, 2);
    const int set = setOf("/tmp/Sem_TestSet", 1);
    ASSERT_NE(set, -1);
    EXPECT_EQ(::semctl(set, 0, GETVAL), 1);
    Mutex *other = Mutex::GetLocalMutex(MutexID("TestSet", 2, 3));
    EXPECT_NE(other, first);
    EXPECT_TRUE(first->Lock());
    EXPECT_TRUE(other->Lock()) << "another mutex of the same set";
    EXPECT_EQ(::semctl(set, 1, GETVAL), 0);
    EXPECT_EQ(::semctl(set, 3, GETVAL), 0);
    EXPECT_TRUE(other->UnLock());
    EXPECT_TRUE(first->UnLock());
    Mutex::ReleaseLocalMutex(other);
    Mutex::ReleaseLocalMutex(first);
    EXPECT_EQ(Mutex::FindMutex(id), first);
    Mutex::ReleaseLocalMutex(first);
    EXPECT_EQ(Mutex::FindMutex(id), nullptr);
    EXPECT_EQ(setOf("/tmp/Sem_TestSet", 1), -1) << "the last process removes the set";
}

TEST(Mutexes, WithoutASetFailWithoutBlocking)
{
    // A set of that key with fewer semaphores cannot be had.
    Mutex *small = Mutex::GetLocalMutex(MutexID("TestSmall", 0, 1));
    const int id = setOf("/tmp/Sem_TestSmall", 1);
    MutexID large("TestSmall", 0, 9);
    LinuxMutexSet set(large);
    EXPECT_EQ(set.semaphoreSetID, -1);
    LinuxMutex mutex(large, set.semaphoreSetID);
    EXPECT_FALSE(mutex.Lock());
    EXPECT_FALSE(mutex.UnLock());
    EXPECT_EQ(::semctl(id, 0, GETVAL), 1) << "the set that is there is left alone";
    for (int count : {-1, 0x7FFFFFFF, 250}) {
        LinuxMutexSet impossible(MutexID("TestCount", 0, count));
        EXPECT_EQ(impossible.semaphoreSetID, -1) << count;
        EXPECT_EQ(setOf("/tmp/Sem_TestCount", 1), -1) << "nor is one made";
    }
    Mutex::ReleaseLocalMutex(small);
}

TEST(Mutexes, OfASetThatWasNotRemovedStayAsTheyAre)
{
    const MutexID id("TestKept", 0, 1);
    Mutex *first = Mutex::GetLocalMutex(id);
    const int set = setOf("/tmp/Sem_TestKept", 1);
    ::semctl(set, 0, SETVAL, 0);  // its last process died before it removed it
    {
        const LinuxMutexSet second(id);
        EXPECT_EQ(second.semaphoreSetID, set);
        EXPECT_EQ(::semctl(set, 0, GETVAL), 1);
        EXPECT_EQ(::semctl(set, 1, GETVAL), 1);
    }
    Mutex::ReleaseLocalMutex(first);
}

TEST(Mutexes, CutLongNames)
{
    const std::string longName(60, 'x');
    const std::string same = std::string(49, 'x') + "y";
    EXPECT_TRUE(MutexID(longName.c_str(), 1, 2).sameMutex(MutexID(same.c_str(), 1, 5)));
    EXPECT_FALSE(MutexID("a", 1, 2).sameMutex(MutexID("a", 2, 2)));
    EXPECT_TRUE(MutexID("a", 1, 2).sameSet(MutexID("a", 2, 2)));
    EXPECT_EQ(std::strlen(MutexID(longName.c_str(), 1, 2).name), 49u);
}

TEST(Mutexes, AGuardGivesBackOnlyWhatItGot)
{
    const MutexID id("TestGuard", 0, 1);
    Mutex *mutex = Mutex::GetLocalMutex(id);
    const int set = setOf("/tmp/Sem_TestGuard", 1);
    {
        MutexGuard guard(mutex);
        EXPECT_EQ(::semctl(set, 1, GETVAL), 0);
    }
    EXPECT_EQ(::semctl(set, 1, GETVAL), 1);
    {
        MutexGuard none(nullptr);
    }
    ::semctl(set, 0, IPC_RMID);
    {
        MutexGuard guard(mutex);  // there is nothing to get
    }
    Mutex::ReleaseLocalMutex(mutex);
    EXPECT_EQ(setOf("/tmp/Sem_TestGuard", 1), -1);
}

}  // namespace tests::mutex
