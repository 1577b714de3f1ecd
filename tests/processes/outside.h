// What processes share, seen and damaged from outside, and how long to go on.
#ifndef SORVANE_TESTS_PROCESSES_OUTSIDE_H
#define SORVANE_TESTS_PROCESSES_OUTSIDE_H

#include "inspect/arena_report.h"
#include "tests/processes/peer.h"

#include <chrono>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace tests
{

/// Whether the tests were asked to take their time.
bool longRun();

/// How often a test repeats itself: a few rounds, or for as long as SORVANE_STRESS_SECONDS says, but so many at least.
/// Prints its figure.
class Rounds
{
public:
    Rounds(const std::string &what, int few, int atLeast = 1);
    ~Rounds();
    Rounds(const Rounds &) = delete;
    Rounds &operator=(const Rounds &) = delete;

    bool another();
    int done() const { return count_ - 1; }
    /// Adds to a number of the figure.
    void note(const std::string &name, unsigned long value) { notes_[name] += value; }

private:
    double passed() const;

    std::string what_;
    int fewest_;
    double seconds_;  // to go on for
    int count_ = 0;
    std::map<std::string, unsigned long> notes_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// The words of a text.
std::vector<std::string> wordsOf(const std::string &text);

constexpr const char *arenaKeyFile = "/tmp/R20SharedMemory";
constexpr const char *setKeyFile = "/tmp/Sem_R20Mutex";
constexpr int allMutexes = 10;

/// What is there under the names of the library; -1: nothing.
int segment();
int semaphores();
int valueOf(int semaphore);
int makeSegment(std::size_t size = 65536);
/// The process that holds the arena's mutex; 0 when it is free.
int arenaMutexHolder();
void removeEverything();

/// The bytes of a segment, attached.
class Attached
{
public:
    explicit Attached(int id = segment());
    ~Attached();
    Attached(const Attached &) = delete;
    Attached &operator=(const Attached &) = delete;

    void put(std::size_t place, unsigned int value) const;
    unsigned int u32(std::size_t place) const;
    std::string text(std::size_t place) const { return reinterpret_cast<const char *>(bytes + place); }

    unsigned char *bytes;
};

/// Where the runs of the objects begin: patterns of the on and the off period, EEPROMs, receive buffers, what is free.
constexpr std::size_t blockBytes = 124, runs = 128;
constexpr std::size_t patternsOn = runs, patternsOff = runs + 2 * blockBytes, chips = runs + 4 * blockBytes;
constexpr std::size_t batches = runs + 7 * blockBytes, freeBlocks = runs + 42 * blockBytes;
/// A run's use count and length, from its begin.
constexpr std::size_t useCount = 116, blockCount = 120;

/// Waits until the peer is loaded and expects that it has the arena, the set and a working board.
void expectAtWork(Peer &peer, int output, int milliseconds = 10000);
void expectAllQuit(std::vector<Peer> &peers);

/// Expects no findings and that many registrations; use counts of all four objects unless it is 0.
void expectWhole(const std::string &when, int registrations, unsigned int useCount = 0);
/// The same of processes that share everything.
void expectShared(int processes, const std::string &when = "");
/// Expects that everything is gone but a set that the registrations of killed processes keep, fewest to most of them.
void expectOnlyRegistrationsLeft(const std::string &when, int fewest, int most);
void expectNothingLeft(const std::string &when = "all left");

class Processes : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;
};

/// Once with peers of this width, and once of both where this machine makes both.
class BothWidths : public Processes, public testing::WithParamInterface<const char *>
{
protected:
    bool mixed() const { return GetParam() != std::string("own"); }
    /// The program of the n-th peer.
    const char *program(std::size_t n) const { return mixed() && n % 2 ? otherWidth() : ownWidth(); }
    std::string named(const std::string &what) const { return what + (mixed() ? " of both widths" : ""); }
};
std::vector<const char *> widths();
std::string nameOfWidth(const testing::TestParamInfo<const char *> &info);

}  // namespace tests

#endif
