// Processes that start and leave at the same instant, and what they leave to each other.
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <random>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "tests/stress/outside.h"

namespace stress
{

namespace
{

constexpr const char *gatePath = "/tmp/stress_gate";

/// Processes that wait just before they load the library, and are let in together.
class Gate
{
public:
    Gate()
    {
        ::unlink(gatePath);
        if (::mkfifo(gatePath, 0600) != 0)
            throw std::runtime_error("no gate");
    }
    ~Gate()
    {
        ::close(gate);
        ::unlink(gatePath);
    }
    Gate(const Gate &) = delete;
    Gate &operator=(const Gate &) = delete;

    void add(const char *program)
    {
        ::setenv("STRESS_GATE", gatePath, 1);
        waiting.emplace_back(program, Peer::Start::held);
        waiting.back().release();
        ::unsetenv("STRESS_GATE");
    }
    void waitForAll()
    {
        for (Peer &peer : waiting)
            ASSERT_EQ(answerOf(peer, 30000), "gate");
    }
    std::vector<Peer> &open()
    {
        while (gate == -1)  // until the first stands before it
            gate = ::open(gatePath, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        return waiting;
    }

private:
    int gate = -1;  // stays open for those that have said that they are there, but are a step away
    std::vector<Peer> waiting;
};

const char *programFor(std::size_t number)
{
    return number % 2 ? otherWidthWorker() : STRESS_WORKER;
}

void leaveTogether(std::vector<Peer> &peers)
{
    for (Peer &peer : peers)
        peer.leave();
    for (Peer &peer : peers)
        EXPECT_TRUE(peer.wait());
}

void startTogether(const char *what, std::size_t together, int few, bool mixed)
{
    for (Rounds rounds(what, few, mixed ? few : 500); rounds.another();) {
        Gate gate;
        for (std::size_t k = 0; k < together; ++k)
            gate.add(programFor(mixed ? k : 0));
        gate.waitForAll();
        std::vector<Peer> &peers = gate.open();
        for (std::size_t k = 0; k < together; ++k)
            expectAtWork(peers[k], static_cast<int>(k), 30000);
        expectWhole("all started", static_cast<int>(together), static_cast<unsigned int>(together));
        EXPECT_EQ(askInTime(peers[0], "on"), together == 32 ? "FFFFFFFF00" : "FF00000000");
        leaveTogether(peers);
        expectNothingLeft("all left");
    }
}

/// A joiner, or two, while the last one leaves; which of them is quicker differs from round to round.
void churn(const char *what, int few, bool mixed)
{
    std::minstd_rand random(1);
    Peer first(STRESS_WORKER, Peer::Start::held);
    first.release();
    expectAtWork(first, 0);
    std::vector<Peer> present;
    present.push_back(std::move(first));
    for (Rounds rounds(what, few, mixed ? few : 5000); rounds.another();) {
        Gate gate;
        const std::size_t joiners = 1 + random() % 2;
        for (std::size_t k = 0; k < joiners; ++k)
            gate.add(programFor(mixed ? random() : 0));
        gate.waitForAll();
        const auto delay = std::chrono::microseconds(random() % 1500);
        const bool leaveFirst = random() / 8 % 2;
        if (leaveFirst)
            leaveTogether(present);  // ... or they wait for it below
        std::vector<Peer> &peers = gate.open();
        if (!leaveFirst) {
            std::this_thread::sleep_for(delay);
            leaveTogether(present);
        }
        for (std::size_t k = 0; k < joiners; ++k)
            expectAtWork(peers[k], static_cast<int>(k));
        expectWhole("the joiners alone", static_cast<int>(joiners));
        present = std::move(peers);
    }
    leaveTogether(present);
    expectNothingLeft("all left");
}

class StartAndLeave : public Stress
{
};

TEST_F(StartAndLeave, ThirtyTwoAtOnceMakeOneArenaAndLeaveNothing)
{
    startTogether("32 at once", 32, 4, false);
}

TEST_F(StartAndLeave, SomebodyJoinsWhileTheLastOneLeaves)
{
    churn("churn", 80, false);
}

#ifdef OTHER_WIDTH_WORKER
TEST_F(StartAndLeave, OfBothWidthsMakeOneArenaTogether)
{
    startTogether("8 of both widths at once", 8, 1, true);
}

TEST_F(StartAndLeave, SomebodyOfEitherWidthJoinsWhileTheLastOneLeaves)
{
    churn("churn of both widths", 8, true);
}
#endif

TEST_F(StartAndLeave, ForkedChildrenLeaveTheirParentWhole)
{
    Peer parent(STRESS_WORKER), other(otherWidthWorker());
    for (Rounds rounds("forked children", 10); rounds.another();) {
        for (const char *end : {"exit", "hurry", "crash"}) {
            const char *expected = end == std::string("crash") ? "killed" : "exited";
            EXPECT_EQ(askInTime(parent, std::string("fork ") + end + " 4"), expected);
            EXPECT_EQ(askInTime(other, "on"), "3000000000") << "the child's output and the parent's";
            expectWhole(end, 2, 2);
            EXPECT_EQ(reportArena().attachments, 2u);
            EXPECT_EQ(askInTime(other, "bit 4 0"), "1");
            EXPECT_EQ(askInTime(other, "bit 5 0"), "1");
        }
    }
    EXPECT_TRUE(parent.quit());
    EXPECT_EQ(askInTime(other, "bit 0 1"), "1");
    EXPECT_TRUE(other.quit());
    expectNothingLeft("after forks");
}

/// Kills at random moments of driving and of loading, while one process goes on all the time.
TEST_F(StartAndLeave, ProcessesKilledAtRandomMomentsHoldNobodyUp)
{
    std::minstd_rand random(7);
    Peer survivor(STRESS_WORKER);
    const auto driving = [](std::size_t k) {
        auto peer = std::make_unique<Peer>(workerAround());
        peer->tell("hammer " + std::to_string(8 * k));
        return peer;
    };
    std::vector<std::unique_ptr<Peer>> drivers;
    for (std::size_t k = 0; k < 4; ++k)
        drivers.push_back(driving(k));
    int driversKilled = 0, startersKilled = 0;
    for (Rounds rounds("random kills, one of a driver and one of a starting process each", 80, 1000);
         rounds.another();) {
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
        const std::size_t k = random() % drivers.size();
        drivers[k]->kill();
        const int state = ++driversKilled % 2;
        EXPECT_EQ(askInTime(survivor, "bit 33 " + std::to_string(state), 1000), "1");
        EXPECT_EQ(askInTime(survivor, "on").substr(8), state ? "02" : "00");
        Peer starting(workerAround(), Peer::Start::held);
        starting.release();
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
        starting.kill();
        ++startersKilled;
        drivers[k] = driving(k);
    }
    for (auto &driver : drivers)
        driver->kill();
    driversKilled += static_cast<int>(drivers.size());
    EXPECT_EQ(reportArena().text(), "");
    EXPECT_TRUE(survivor.quit());
    expectOnlyRegistrationsLeft("the survivor left", driversKilled, driversKilled + startersKilled);
}

}  // namespace

}  // namespace stress
