#include "tests/processes/outside.h"

#include "tests/processes/shared_board.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <unistd.h>

namespace tests
{

namespace
{

/// An emulator makes the start of a process some thirty times as long.
bool emulated()
{
    const char *emulator = sizeof(void *) == 4 ? std::getenv("SORVANE_EMULATOR") : nullptr;
    return emulator && *emulator;
}

/// Of each test, as scripts/stress asks for it; otherwise null.
const char *secondsAsked()
{
    return std::getenv("SORVANE_STRESS_SECONDS");
}

}  // namespace

bool longRun()
{
    return secondsAsked() != nullptr;
}

Rounds::Rounds(const std::string &what, int few, int atLeast) : what_(what), fewest_(longRun() ? atLeast : few)
{
    if (emulated())
        fewest_ = (fewest_ + 9) / 10;
    const char *const seconds = secondsAsked();
    seconds_ = seconds ? std::atof(seconds) : 0;
}

Rounds::~Rounds()
{
    std::printf("    %s: %d rounds", what_.c_str(), done());
    for (const auto &[name, value] : notes_)
        std::printf(", %lu %s", value, name.c_str());
    std::printf(" in %.1f s\n", passed());
    std::fflush(stdout);
}

double Rounds::passed() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

bool Rounds::another()
{
    // One that has failed need not fail a thousand times more.
    const bool goOn = !testing::Test::HasFailure() && (count_ < fewest_ || passed() < seconds_);
    ++count_;
    return goOn;
}

std::vector<std::string> wordsOf(const std::string &text)
{
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

int segment()
{
    return ::shmget(::ftok(arenaKeyFile, 1), 0, 0);
}

int semaphores()
{
    return ::semget(::ftok(setKeyFile, 1), 0, 0);
}

int valueOf(int semaphore)
{
    return ::semctl(semaphores(), semaphore, GETVAL);
}

int makeSegment(std::size_t size)
{
    ::close(::open(arenaKeyFile, O_RDWR | O_CREAT, 0666));
    return ::shmget(::ftok(arenaKeyFile, 1), size, IPC_CREAT | 0666);
}

int arenaMutexHolder()
{
    return valueOf(1) == 0 ? ::semctl(semaphores(), 1, GETPID) : 0;
}

void removeEverything()
{
    ::semctl(semaphores(), 0, IPC_RMID);
    ::shmctl(segment(), IPC_RMID, nullptr);
}

Attached::Attached(int id) : bytes(static_cast<unsigned char *>(::shmat(id, nullptr, 0)))
{
    if (bytes == reinterpret_cast<unsigned char *>(-1))
        throw std::runtime_error("there is no such segment");
}

Attached::~Attached()
{
    ::shmdt(bytes);
}

void Attached::put(std::size_t place, unsigned int value) const
{
    std::memcpy(bytes + place, &value, sizeof value);
}

unsigned int Attached::u32(std::size_t place) const
{
    unsigned int value;
    std::memcpy(&value, bytes + place, sizeof value);
    return value;
}

void expectAtWork(Peer &peer, int output, int milliseconds)
{
    peer.awaitReady(milliseconds);
    EXPECT_EQ(peer.ask("attached"), "yes");
    EXPECT_EQ(peer.ask("bit " + std::to_string(output) + " 1", milliseconds), "1");
}

void expectAllQuit(std::vector<Peer> &peers)
{
    for (Peer &peer : peers)
        peer.leave();
    for (Peer &peer : peers)
        EXPECT_TRUE(peer.wait());
}

void expectWhole(const std::string &when, int registrations, unsigned int useCount)
{
    const ArenaReport report = reportArena();
    EXPECT_EQ(report.text(), "") << when;
    EXPECT_EQ(report.registrations, registrations) << when;
    for (int k = 0; useCount != 0 && k < ArenaReport::objectCount; ++k)
        EXPECT_EQ(report.useCounts[k], useCount) << when << ", object " << k;
}

void expectShared(int processes, const std::string &when)
{
    expectWhole(when, processes, static_cast<unsigned int>(processes));
}

void expectOnlyRegistrationsLeft(const std::string &when, int fewest, int most)
{
    const ArenaReport report = reportArena();
    EXPECT_EQ(report.text(), "") << when;
    EXPECT_EQ(report.segmentID, -1) << when;
    EXPECT_GE(report.registrations, fewest) << when;
    EXPECT_LE(report.registrations, most) << when;
    EXPECT_EQ(report.setID == -1, report.registrations == 0) << when;
}

void expectNothingLeft(const std::string &when)
{
    expectOnlyRegistrationsLeft(when, 0, 0);
}

void Processes::SetUp()
{
    expectNothingLeft("before");
    startNewBoard();
}

void Processes::TearDown()
{
    removeEverything();
}

std::vector<const char *> widths()
{
    return hasOtherWidth() ? std::vector<const char *>{"own", "both"} : std::vector<const char *>{"own"};
}

std::string nameOfWidth(const testing::TestParamInfo<const char *> &info)
{
    return info.param;
}

}  // namespace tests
