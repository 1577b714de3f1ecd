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

Rounds::Rounds(const char *what, int few) : what(what), few(emulated() ? (few + 9) / 10 : few)
{
    const char *asked = std::getenv("SORVANE_STRESS_SECONDS");
    most = asked ? std::atof(asked) : 0;
}

Rounds::~Rounds()
{
    std::printf("    %s: %d rounds", what, done());
    for (const auto &[name, value] : notes)
        std::printf(", %lu %s", value, name.c_str());
    std::printf(" in %.1f s\n", seconds());
    std::fflush(stdout);
}

double Rounds::seconds() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

bool Rounds::another()
{
    // One that has failed need not fail a thousand times more.
    const bool goOn = !testing::Test::HasFailure() && (count < few || seconds() < most);
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
