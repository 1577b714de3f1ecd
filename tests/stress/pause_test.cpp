// A process stopped before each system call of its loading and leaving while another lives its whole life. Only one
// that holds the arena's mutex at that moment makes the other wait.
#include <random>
#include <string>

#include "tests/stress/outside.h"
#include "tests/stress/tracer.h"

namespace stress
{

namespace
{

enum class Then { goesOn, isKilled };
enum class Where { beforeCalls, betweenInstructions };

/// Works, and is registered where it works.
void expectInOrder(Peer &other)
{
    expectAtWork(other, 1);
    const ArenaReport report = reportArena();
    EXPECT_EQ(report.text(), "");
    EXPECT_GE(report.registrations, 1);
    EXPECT_TRUE(other.quit());
}

/// The whole life of another process, as far as the stopped one allows; true when it had to wait.
bool otherLife(Traced &stopped, const Part &part, Then then)
{
    Peer other(workerAround(), Peer::Start::held);
    const bool waits = arenaMutexHolder() == stopped.peer.id();
    other.release();
    if (waits) {
        EXPECT_FALSE(other.answers(30)) << "it joined although the arena's mutex is held";
    } else {
        expectInOrder(other);
    }
    if (then == Then::isKilled) {
        stopped.peer.kill();
    } else {
        stopped.release();
        if (part.loading())
            expectAtWork(stopped.peer, 2);
    }
    if (waits) {
        expectInOrder(other);
    }
    return waits;
}

struct Count {
    std::size_t points = 0;
    std::size_t waited = 0;
};

/// To the point-th system call of the part, or to somewhere on the way there; false when it has no such call.
bool goTo(Traced &process, std::size_t point, Where where)
{
    static std::minstd_rand random(std::random_device{}());
    constexpr std::size_t mostInstructions = 700;  // as long as an object is made
    std::size_t seen = process.where().ends_with("before");
    while (seen <= point) {
        const bool onTheWay =
            where == Where::betweenInstructions && seen == point && !process.where().ends_with("before");
        if (onTheWay) {
            const std::size_t instructions = random() % mostInstructions;
            for (std::size_t k = 0; k < instructions && process.stepInstruction(); ++k) {
            }
            return true;
        }
        if (!process.next())
            return false;
        seen += process.where().ends_with("before");
    }
    return true;
}

void pauseAtEachPoint(const Part &part, Where where, Then then, Count &count)
{
    const std::size_t step = longRun() ? 1 : 3;  // a short run takes some of them, other ones each time
    for (std::size_t point = std::random_device()() % step;; point += step) {
        Traced process(STRESS_WORKER);
        process.beginWith(part);
        if (!goTo(process, point, where)) {
            EXPECT_GT(point, 7u) << "the part has too few system calls";
            process.peer.kill();
            removeEverything();
            return;
        }
        SCOPED_TRACE("\"" + part.line + "\" stopped at or behind " + process.where() + ", point " +
                     std::to_string(point));
        ++count.points;
        count.waited += otherLife(process, part, then);
        EXPECT_TRUE(then == Then::isKilled || (part.leaving() ? process.peer.wait() : process.peer.quit()));
        if (then == Then::isKilled) {  // the last to leave in order takes away what a killed one left
            Peer last(workerAround());
            EXPECT_TRUE(last.quit());
        }
        expectOnlyRegistrationsLeft("all left", 0, then == Then::isKilled);
        removeEverything();
        if (testing::Test::HasFailure())
            return;
    }
}

class Paused : public Stress
{
protected:
    void run(const char *what, Where where, Then then)
    {
        for (Rounds rounds(what, 1); rounds.another();) {
            Count count;
            pauseAtEachPoint({""}, where, then, count);
            pauseAtEachPoint({"quit"}, where, then, count);
            rounds.note("points", count.points);
            rounds.note("points that made the other wait", count.waited);
            EXPECT_GT(count.waited, 0u);
        }
    }
};

TEST_F(Paused, AtEachSystemCallOfLoadingAndLeavingAndThenGoingOn)
{
    run("paused and continued", Where::beforeCalls, Then::goesOn);
}

TEST_F(Paused, AtEachSystemCallOfLoadingAndLeavingAndThenKilled)
{
    run("paused and killed", Where::beforeCalls, Then::isKilled);
}

TEST_F(Paused, BetweenInstructionsOfLoadingAndLeavingAndThenGoingOn)
{
    run("paused between instructions and continued", Where::betweenInstructions, Then::goesOn);
}

}  // namespace

}  // namespace stress
