// What the stress tests have in common: the view from outside on what processes share, and how long to go on.
#ifndef SORVANE_TESTS_STRESS_OUTSIDE_H
#define SORVANE_TESTS_STRESS_OUTSIDE_H

#include <chrono>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "inspect/arena_report.h"
#include "tests/support/peer.h"

namespace stress
{

using tests::Peer;

/// Whether the tests were asked to take their time.
bool longRun();

/// The worker in the other width, where this machine makes both; its own otherwise.
const char *otherWidthWorker();
/// The worker for those around a process that is stopped or killed: one in four is of the other width.
const char *workerAround();

/// How often a test repeats itself: a few rounds, or for as long as SORVANE_STRESS_SECONDS says, but so many at least.
/// Prints its figure.
class Rounds
{
public:
    Rounds(const char *what, int few, int atLeast = 1);
    ~Rounds();
    Rounds(const Rounds &) = delete;
    Rounds &operator=(const Rounds &) = delete;

    bool another();
    int done() const { return count - 1; }
    /// Adds to a number of the figure.
    void note(const std::string &name, unsigned long value) { notes[name] += value; }

private:
    double passed() const;

    const char *what;
    int fewest;
    double seconds;  // to go on for
    int count = 0;
    std::map<std::string, unsigned long> notes;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

/// An answer that has to come in time; throws when it does not.
std::string answerOf(Peer &peer, int milliseconds = 10000);
std::string askInTime(Peer &peer, const std::string &line, int milliseconds = 10000);
/// Waits until the peer is loaded and expects that it has the arena, the set and a working board.
void expectAtWork(Peer &peer, int output, int milliseconds = 10000);

/// Expects no findings and that many registrations; use counts of all four objects unless it is 0.
void expectWhole(const std::string &when, int registrations, unsigned int useCount = 0);
void expectNothingLeft(const std::string &when);
/// Expects that everything is gone but a set that the registrations of killed processes keep, fewest to most of them.
void expectOnlyRegistrationsLeft(const std::string &when, int fewest, int most);

class Stress : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;
};

void removeEverything();
/// The process that holds the arena's mutex; 0 when it is free.
int arenaMutexHolder();

}  // namespace stress

#endif
