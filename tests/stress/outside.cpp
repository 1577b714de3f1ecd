#include "tests/stress/outside.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>

#include "tests/stress/recording_driver.h"

namespace stress
{

namespace
{

/// An emulator makes the start of a process some thirty times as long.
bool emulated()
{
    const char *emulator = std::getenv("SORVANE_EMULATOR");
    return sizeof(void *) == 4 && emulator && *emulator;
}

}  // namespace

bool longRun()
{
    return std::getenv("SORVANE_STRESS_SECONDS") != nullptr;
}

const char *otherWidthWorker()
{
#ifdef OTHER_WIDTH_WORKER
    return OTHER_WIDTH_WORKER;
#else
    return STRESS_WORKER;
#endif
}

const char *workerAround()
{
    static unsigned int asked = 0;
    return ++asked % 4 == 0 ? otherWidthWorker() : STRESS_WORKER;
}

Rounds::Rounds(const char *what, int few, int atLeast) : what(what), fewest(longRun() ? atLeast : few)
{
    if (emulated())
        fewest = (fewest + 9) / 10;
    seconds = longRun() ? std::atof(std::getenv("SORVANE_STRESS_SECONDS")) : 0;
}

Rounds::~Rounds()
{
    std::printf("    %s: %d rounds", what, done());
    for (const auto &[name, value] : notes)
        std::printf(", %lu %s", value, name.c_str());
    std::printf(" in %.1f s\n", passed());
    std::fflush(stdout);
}

double Rounds::passed() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

bool Rounds::another()
{
    // One that has failed need not fail a thousand times more.
    const bool goOn = !testing::Test::HasFailure() && (count < fewest || passed() < seconds);
    ++count;
    return goOn;
}

std::string answerOf(Peer &peer, int milliseconds)
{
    if (!peer.answers(milliseconds))
        throw std::runtime_error("no answer within " + std::to_string(milliseconds) + " ms");
    return peer.answer();
}

std::string askInTime(Peer &peer, const std::string &line, int milliseconds)
{
    peer.tell(line);
    return answerOf(peer, milliseconds);
}

void expectAtWork(Peer &peer, int output, int milliseconds)
{
    ASSERT_EQ(answerOf(peer, milliseconds), "ready");
    EXPECT_EQ(askInTime(peer, "attached"), "yes");
    EXPECT_EQ(askInTime(peer, "bit " + std::to_string(output) + " 1", milliseconds), "1");
}

void expectWhole(const std::string &when, int registrations, unsigned int useCount)
{
    const ArenaReport report = reportArena();
    EXPECT_EQ(report.text(), "") << when;
    EXPECT_EQ(report.registrations, registrations) << when;
    for (int k = 0; useCount != 0 && k < ArenaReport::objectCount; ++k)
        EXPECT_EQ(report.useCounts[k], useCount) << when << ", object " << k;
}

void expectNothingLeft(const std::string &when)
{
    expectOnlyRegistrationsLeft(when, 0, 0);
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

void removeEverything()
{
    const ArenaReport report = reportArena();
    if (report.setID != -1)
        ::semctl(report.setID, 0, IPC_RMID);
    if (report.segmentID != -1)
        ::shmctl(report.segmentID, IPC_RMID, nullptr);
}

int arenaMutexHolder()
{
    const int set = ::semget(::ftok("/tmp/Sem_R20Mutex", 1), 0, 0);
    return set != -1 && ::semctl(set, 1, GETVAL) == 0 ? ::semctl(set, 1, GETPID) : 0;
}

void Stress::SetUp()
{
    expectNothingLeft("before");
    startNewTrace();
}

void Stress::TearDown()
{
    removeEverything();
}

}  // namespace stress
