// Which locks an operation takes, in which order, and what a child has of them.
#include "board/rbase_implementation.h"
#include "board/rbase_shared_implementation/shared_board_state.h"
#include "shared/mutex_set.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <sched.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tests::locks
{

int semaphore(const Mutex *mutex, int command)
{
    const int set = static_cast<const LinuxMutex *>(mutex)->semaphoreSetID;
    return ::semctl(set, mutex->mutexID.number + 1, command);
}

/// Whether it waits for a mutex that is held; `look` is called while it does.
bool waitsFor(
    Mutex *mutex, const std::function<void()> &run, const std::function<void()> &look = [] {})
{
    std::optional<MutexGuard> held(std::in_place, mutex);
    std::atomic<bool> done = false;
    std::thread other([&] {
        run();
        done = true;
    });
    while (!done && semaphore(mutex, GETNCNT) == 0)
        std::this_thread::yield();
    const bool waits = !done;
    look();
    held.reset();
    other.join();
    return waits;
}

TEST(Locks, AreTakenByEachOperationInTheirOrder)
{
    using Board = RBaseImplementation;
    const SharedMemoryObject *const on = &SharedOutOnCopy, *const off = &SharedOutOffCopy;
    const SharedMemoryObject *const chips = &SharedcurrentEEPROM, *const batches = &SharedserialRxBuffer;
    usbOutput none = {};
    R20EEPROM chip = E24LC64;
    unsigned char byte;
    unsigned short word;
    unsigned int received;
    const struct {
        const char *name;
        std::vector<const SharedMemoryObject *> locks;
        std::function<void(Board &)> run;
    } table[] = {
        {"ModifyOutputs", {on, off}, [&](Board &b) { b.ModifyOutputs(&none, &none); }},
        {"SetOnPeriodOutputs", {on}, [&](Board &b) { b.SetOnPeriodOutputs(none); }},
        {"SetOffPeriodOutputs", {off}, [&](Board &b) { b.SetOffPeriodOutputs(none); }},
        {"SetOnPeriodOutputBit", {on}, [](Board &b) { b.SetOnPeriodOutputBit(usbOutputByte0, 0, 0); }},
        {"SetOffPeriodOutputBit", {off}, [](Board &b) { b.SetOffPeriodOutputBit(usbOutputByte0, 0, 0); }},
        {"ConfigureEEPROM", {chips}, [&](Board &b) { b.ConfigureEEPROM(&chip); }},
        {"ReadEEPROM", {chips}, [&](Board &b) { b.ReadEEPROM(8, &byte, 1); }},
        {"UncheckedReadEEPROM", {chips}, [&](Board &b) { b.UncheckedReadEEPROM(0, &byte, 1); }},
        {"WriteEEPROM", {chips}, [&](Board &b) { b.WriteEEPROM(8, &byte, 1); }},
        {"EEPROMConfigured", {chips}, [](Board &b) { b.EEPROMConfigured(9); }},
        {"timestamps",
         {batches},
         [&](Board &b) { b.ReceiveByteWithTimestamp(usbSerialPort0, &byte, &byte, &received); }},
        {"of words",
         {batches},
         [&](Board &b) { b.ReceiveByteWithTimestamp9BitData(usbSerialPort0, &word, &byte, &received); }},
    };
    Board board(nullptr, -1, 1, 9);
    for (const auto &row : table) {
        for (std::size_t k = 0; k < row.locks.size(); ++k) {
            const auto look = [&] {
                for (std::size_t j = 0; j < row.locks.size(); ++j)
                    EXPECT_EQ(semaphore(row.locks[j]->mutex, GETVAL), j > k ? 1 : 0) << row.name << " has lock " << j;
            };
            EXPECT_TRUE(waitsFor(
                row.locks[k]->mutex, [&] { row.run(board); }, look))
                << row.name << ", lock " << k;
        }
    }
}

TEST(Locks, OfAnArenaAreTakenToJoinAndToLeave)
{
    using List = SharedMemoryLocalListElement;
    const SharedMemoryArenaID id = {{"TestLocks", 0}, {"TestLocksMutex", 0, 1}, 4096};
    Mutex *mutex = Mutex::GetLocalMutex(id.mutexID);
    List *element = nullptr;
    const auto noSegment = [] { EXPECT_EQ(::shmget(::ftok("/tmp/TestLocks", 1), 0, 0), -1); };
    EXPECT_TRUE(waitsFor(
        mutex, [&] { element = List::GetSharedMemoryArenaHeader(id); }, noSegment));
    EXPECT_TRUE(waitsFor(mutex, [&] { List::ReleaseSharedMemoryElement(element); }));
    Mutex::ReleaseLocalMutex(mutex);
}

TEST(Locks, AreNotTornDownByAChildThatHasItsParentsNumber)
{
    if (::getpid() != 1)
        GTEST_SKIP() << "only the first process of a namespace can have children of its own number";
    const pid_t between = ::fork();
    if (between == 0) {
        const bool apart = ::unshare(CLONE_NEWPID) == 0;
        const pid_t child = ::fork();
        if (child == 0)
            std::exit(0);  // its own way out, with all destructors
        ::waitpid(child, nullptr, 0);
        ::_exit(apart ? 0 : 77);
    }
    int status = 0;
    ::waitpid(between, &status, 0);
    if (WEXITSTATUS(status) != 0)
        GTEST_SKIP() << "no PID namespace may be made here";
    EXPECT_EQ(semaphore(SharedOutOnCopy.mutex, GETVAL), 1);
}

}  // namespace tests::locks
