// The report by which all the others judge: it names every damage, and nothing while processes come and go.
#include "tests/processes/outside.h"
#include "tests/processes/shared_board.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/sem.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tests::reports
{

namespace
{

TEST_F(Processes, AreReportedWithEveryDamage)
{
    Peer peer;
    EXPECT_EQ(peer.ask("bit 0 1"), "1");
    ASSERT_EQ(reportArena().text(), "");
    const struct {
        std::size_t place;
        unsigned int value;
        const char *finding;
    } damages[] = {
        {0, 0x58585858, "header: name"},
        {52, 1, "header: name"},
        {108, 11, "header: mutex"},
        {120, 2, "built 2 times"},
        {124, 525, "525 blocks"},
        {124, 0, "0 blocks"},
        {runs, 0x58585858, "unknown object"},
        {runs + useCount, 0, "free run with the name"},
        {runs + blockCount, 3, "OutOnCopies has 3 blocks"},
        {runs + blockCount, 0, "has a length of 0"},
        {runs + blockCount, 600, "has a length of 600"},
        {patternsOff + useCount, 9, "OutOffCopies has 9 uses, OutOnCopies only 1"},
        {runs + 112, 5, "its mutex ID is not the empty one"},
        {chips + blockBytes + 4, 0x00020000, "EEPROM of device 0: flag 2"},
        {chips + blockBytes + 8 * boardDevice, 0, "is marked as configured without a record"},
        {batches + blockBytes, 256, "receive buffer of device 0: 0 of 256 bytes"},
        {batches + blockBytes, 0x00040003, "receive buffer of device 0: 4 of 3 bytes"},
    };
    for (const auto &damage : damages) {
        const Attached arena;
        const unsigned int kept = arena.u32(damage.place);
        arena.put(damage.place, damage.value);
        EXPECT_NE(reportArena().text().find(damage.finding), std::string::npos)
            << damage.finding << " in " << reportArena().text();
        arena.put(damage.place, kept);
    }
    ::semctl(semaphores(), 3, SETVAL, 2);
    EXPECT_EQ(reportArena().text(), "mutex 2 is 2: it can be held by several at once\n");
    if (::fork() == 0)
        ::_exit(::semctl(semaphores(), 3, SETVAL, 0));
    ::wait(nullptr);
    EXPECT_EQ(reportArena().text(), "mutex 2 is held, but the process that took it is gone\n");
    ::semctl(semaphores(), 3, SETVAL, 1);
    EXPECT_EQ(reportArena().text(), "");
    EXPECT_TRUE(peer.quit());
}

TEST_F(Processes, AreReportedWithoutAFindingWhileTheyComeAndGo)
{
    // In a process of its own: one that starts others would hand them the segment that it looks at.
    const pid_t onlooker = ::fork();
    if (onlooker == 0) {
        std::string findings;
        while (findings.empty())
            findings = reportArena().text();
        std::printf("%s", findings.c_str());
        std::exit(1);
    }
    for (Rounds rounds("lives under the report's eyes", 20); rounds.another();) {
        Peer peers[] = {Peer(eitherWidth()), Peer(eitherWidth()), Peer(eitherWidth())};
        for (Peer &peer : peers) {
            EXPECT_EQ(peer.ask("bit 1 1"), "1");
            EXPECT_TRUE(peer.quit());
        }
    }
    ::kill(onlooker, SIGKILL);
    int status = 0;
    ::waitpid(onlooker, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "it has ended with a finding";
    expectNothingLeft();
}

}  // namespace

}  // namespace tests::reports
