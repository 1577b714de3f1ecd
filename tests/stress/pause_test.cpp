// A process stopped before each system call of its loading and leaving while another lives its whole life. Only one
// that holds the arena's mutex at that moment makes the other wait.
#include <string>
#include <unistd.h>

#include "tests/stress/outside.h"
#include "tests/stress/tracer.h"

namespace stress
{

namespace
{

enum class Then { goesOn, isKilled };

/// The whole life of another process, as far as the stopped one allows; true when it had to wait.
bool otherLife(Traced &stopped, const Part &part, Then then)
{
    Peer other(STRESS_WORKER, Peer::Start::held);
    const bool waits = arenaMutexHolder() == stopped.peer.id();
    other.release();
    if (waits) {
        EXPECT_FALSE(other.answers(30)) << "it joined although the arena's mutex is held";
    } else {
        expectAtWork(other, 1);
        EXPECT_TRUE(other.quit());
    }
    if (then == Then::isKilled) {
        stopped.peer.kill();
    } else {
        stopped.release();
        if (part.loading())
            expectAtWork(stopped.peer, 2);
    }
    if (waits) {
        expectAtWork(other, 1);
        EXPECT_TRUE(other.quit());
    }
    return waits;
}

struct Count {
    std::size_t points = 0;
    std::size_t waited = 0;
};

void pauseAtEachCall(const Part &part, Then then, Count &count)
{
    const std::size_t step = longRun() ? 1 : 3;  // a short run takes some of them, other ones each time
    for (std::size_t point = static_cast<std::size_t>(::getpid()) % step;; point += step) {
        Traced process(STRESS_WORKER);
        process.beginWith(part);
        std::size_t seen = process.where().ends_with("before") ? 1 : 0;
        bool inside = true;
        while (inside && seen <= point) {
            inside = process.next();
            seen += inside && process.where().ends_with("before");
        }
        if (!inside) {
            EXPECT_GT(point, 5u) << "the part has too few system calls";
            process.peer.kill();
            removeEverything();
            return;
        }
        SCOPED_TRACE("\"" + part.line + "\" stopped at " + process.where() + ", point " + std::to_string(point));
        ++count.points;
        count.waited += otherLife(process, part, then);
        EXPECT_TRUE(then == Then::isKilled || (part.leaving() ? process.peer.wait() : process.peer.quit()));
        if (then == Then::isKilled) {  // the last to leave in order takes away what a killed one left
            Peer last(STRESS_WORKER);
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
    void run(const char *what, Then then)
    {
        for (Rounds rounds(what, 1); rounds.another();) {
            Count count;
            pauseAtEachCall({""}, then, count);
            pauseAtEachCall({"quit"}, then, count);
            rounds.note("points", count.points);
            rounds.note("of them made the other wait", count.waited);
            EXPECT_GT(count.waited, 0u);
        }
    }
};

TEST_F(Paused, AtEachSystemCallOfLoadingAndLeavingAndThenGoingOn)
{
    run("paused and continued", Then::goesOn);
}

TEST_F(Paused, AtEachSystemCallOfLoadingAndLeavingAndThenKilled)
{
    run("paused and killed", Then::isKilled);
}

}  // namespace

}  // namespace stress
