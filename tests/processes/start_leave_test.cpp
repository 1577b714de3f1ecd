// Processes that start and leave at the same instant, and what they leave to each other.
#include "tests/processes/outside.h"

#include <fcntl.h>
#include <memory>
#include <random>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tests::starts
{

namespace
{

/// Processes that wait just before they load the library, and are let in together.
class Gate
{
public:
    Gate()
    {
        if (::pipe2(ends_, O_CLOEXEC) != 0)
            throw std::runtime_error("no gate");
    }
    ~Gate()
    {
        for (int end : ends_)
            ::close(end);
    }
    Gate(const Gate &) = delete;
    Gate &operator=(const Gate &) = delete;

    void add(const char *program) { waiting_.emplace_back(program, Peer::Start::Now, ends_[0]); }
    void waitForAll()
    {
        for (Peer &peer : waiting_)
            ASSERT_EQ(peer.answer(patience), "gate");
    }
    std::vector<Peer> &open()
    {
        ::close(std::exchange(ends_[1], -1));
        return waiting_;
    }

    static constexpr int patience = 30000;  // ms

private:
    int ends_[2];
    std::vector<Peer> waiting_;
};

class StartAndLeave : public BothWidths
{
};

INSTANTIATE_TEST_SUITE_P(Peers, StartAndLeave, testing::ValuesIn(widths()), nameOfWidth);

TEST_P(StartAndLeave, ManyAtOnceMakeOneArenaAndLeaveNothing)
{
    const int together = mixed() ? 8 : 32;
    const int few = mixed() ? 1 : 4;
    for (Rounds rounds(named(std::to_string(together) + " at once"), few, mixed() ? few : 500); rounds.another();) {
        Gate gate;
        for (int k = 0; k < together; ++k)
            gate.add(program(static_cast<std::size_t>(k)));
        gate.waitForAll();
        std::vector<Peer> &peers = gate.open();
        for (int k = 0; k < together; ++k)
            expectAtWork(peers[static_cast<std::size_t>(k)], k, Gate::patience);
        expectShared(together, "all started");
        EXPECT_EQ(peers[0].ask("on"), mixed() ? "FF00000000" : "FFFFFFFF00");
        expectAllQuit(peers);
        expectNothingLeft();
    }
}

/// A joiner, or two, while the last one leaves; which of them is quicker differs from round to round.
TEST_P(StartAndLeave, SomebodyJoinsWhileTheLastOneLeaves)
{
    const int few = mixed() ? 8 : 80;
    std::minstd_rand random(1);
    std::vector<Peer> present(1);
    for (Rounds rounds(named("churn"), few, mixed() ? few : 5000); rounds.another();) {
        Gate gate;
        const int joiners = 1 + static_cast<int>(random() % 2);
        for (int k = 0; k < joiners; ++k)
            gate.add(program(random()));
        gate.waitForAll();
        const auto delay = std::chrono::microseconds(random() % 1500);
        const bool leaveFirst = random() / 8 % 2;
        if (leaveFirst)
            expectAllQuit(present);  // ... or they wait for it below
        std::vector<Peer> &peers = gate.open();
        if (!leaveFirst) {
            std::this_thread::sleep_for(delay);
            expectAllQuit(present);
        }
        for (int k = 0; k < joiners; ++k)
            expectAtWork(peers[static_cast<std::size_t>(k)], k);
        expectWhole("the joiners alone", joiners);
        present = std::move(peers);
    }
    expectAllQuit(present);
    expectNothingLeft();
}

TEST_F(Processes, ForkedChildrenLeaveTheirParentWhole)
{
    Peer parent, other(otherWidth());
    for (Rounds rounds("forked children", 10); rounds.another();) {
        for (const char *end : {"exit", "hurry", "crash"}) {
            const char *expected = end == std::string("crash") ? "killed" : "exited";
            EXPECT_EQ(parent.ask(std::string("fork ") + end + " 4"), expected);
            EXPECT_EQ(other.ask("on"), "3000000000") << "the child's output and the parent's";
            expectShared(2, end);
            EXPECT_EQ(reportArena().attachments, 2u);
            EXPECT_EQ(other.ask("bit 4 0"), "1");
            EXPECT_EQ(other.ask("bit 5 0"), "1");
        }
    }
    EXPECT_TRUE(parent.quit());
    EXPECT_EQ(other.ask("bit 0 1"), "1");
    EXPECT_TRUE(other.quit());
    expectNothingLeft("after forks");
}

/// Kills at random moments of driving and of loading, while one process goes on all the time.
TEST_F(Processes, ProcessesKilledAtRandomMomentsHoldNobodyUp)
{
    std::minstd_rand random(7);
    Peer survivor;
    const auto driving = [](std::size_t k) {
        auto peer = std::make_unique<Peer>(eitherWidth());
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
        EXPECT_EQ(survivor.ask("bit 33 " + std::to_string(state), 1000), "1");
        EXPECT_EQ(survivor.ask("on").substr(8), state ? "02" : "00");
        Peer starting(eitherWidth(), Peer::Start::Held);
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

}  // namespace tests::starts
