// A process killed before and after each of its system calls, and between its instructions: alone, and beside one that
// lives on.
#include <algorithm>
#include <memory>
#include <random>
#include <sstream>
#include <vector>

#include "tests/stress/outside.h"
#include "tests/stress/recording_driver.h"
#include "tests/stress/tracer.h"

namespace stress
{

namespace
{

constexpr int patience = 5000;  // ms, beside a traced process
constexpr int wholeBatch = 50;  // items of the stream that the other takes before: the next one fetches a batch

const Part loading = {""};
const Part leaving = {"quit"};
const Part opening = {"open"};

const char *const operations[] = {"SetOutputBit",
                                  "ModifyOutputs",
                                  "SetOutputs",
                                  "SetOnPeriodOutputs",
                                  "SetOffPeriodOutputs",
                                  "SetOnPeriodOutputBit",
                                  "SetOffPeriodOutputBit",
                                  "ConfigureEEPROM",
                                  "CheckEEPROM",
                                  "ReadEEPROM",
                                  "WriteEEPROM",
                                  "ReceiveByteWithTimestamp",
                                  "ReceiveByteWithTimestamp9BitData"};

/// One life of a process up to where it is killed, and what the others make of it.
class Scene
{
public:
    Scene(const Part &part, bool beside, int drained = wholeBatch) : part(part), nextItem(firstItem + drained)
    {
        startNewTrace();
        sharedTrace().nextItem = firstItem;
        if (beside) {
            survivor = std::make_unique<Peer>(workerAround());
            EXPECT_EQ(askInTime(*survivor, "bit 0 1"), "1");
            askInTime(*survivor, "drain " + std::to_string(drained));
        }
        victim = std::make_unique<Traced>(STRESS_WORKER);
        if (!part.loading() && part.line != opening.line) {
            victim->beginWith(opening);
            while (victim->next()) {
            }
        }
        victim->beginWith(part);
    }
    ~Scene() { removeEverything(); }
    Scene(const Scene &) = delete;
    Scene &operator=(const Scene &) = delete;

    Traced &process() { return *victim; }

    /// Kills it and looks at who lives on, at who starts now, and at what is left at last.
    void kill(const std::string &where)
    {
        SCOPED_TRACE("\"" + part.line + "\" killed " + where + (survivor ? ", beside another" : ", alone"));
        victim->peer.kill();
        if (survivor) {
            EXPECT_EQ(askInTime(*survivor, "bit 2 1", patience), "1");
            expectPattern(*survivor, 0x05);
            if (part.line.find("9Bit") == std::string::npos)  // mixing both forms shifts the items by right
                expectStream(*survivor);
        }
        Peer newcomer(workerAround(), Peer::Start::held);
        newcomer.release();
        expectAtWork(newcomer, 3, patience);
        expectPattern(newcomer, survivor ? 0x0D : 0x08);
        const ArenaReport report = reportArena();
        EXPECT_EQ(report.text(), "");
        EXPECT_GE(report.registrations, survivor ? 2 : 1);
        EXPECT_TRUE(newcomer.quit());
        EXPECT_TRUE(!survivor || survivor->quit());
        // A process that is killed before it has registered leaves nothing, nor does one that has left already.
        const bool registered = !part.loading() && !part.leaving();
        expectOnlyRegistrationsLeft("all left", registered, 1);
    }

private:
    // The stream comes in batches: 150 to 199, 200 to 299, 300 to 398.
    static constexpr int firstItem = 150;

    /// The outputs of those that live are as they wanted them; the victim's own change has happened or not.
    void expectPattern(Peer &peer, unsigned int own) const
    {
        const bool whole =
            part.line.find("Outputs") != std::string::npos && part.line.find("Modify") == std::string::npos;
        for (const char *pattern : {"on", "off"}) {
            const std::string hex = askInTime(peer, pattern);
            const auto first = static_cast<unsigned int>(std::stoi(hex.substr(0, 2), nullptr, 16));
            EXPECT_TRUE(first == own || (whole && first == (own | 1))) << pattern << " " << hex;
            const std::string rest = hex.substr(2);
            EXPECT_TRUE(rest == "00000000" || rest == "02000000") << pattern << " " << hex;
        }
    }

    /// Whoever asks next gets the item after the last, or the one after that if the victim took it, or those of the
    /// next batch if it died with one in its hands; never an old one, and never one that is put together wrongly.
    void expectStream(Peer &peer) const
    {
        std::istringstream numbers(askInTime(peer, "drain 60"));
        std::vector<int> items;
        for (int number; numbers >> number;)
            items.push_back(number);
        ASSERT_EQ(items.size(), 60u);
        const bool batchDied = nextItem == 200 && items[0] == 300;
        EXPECT_TRUE(items[0] == nextItem || items[0] == nextItem + 1 || batchDied) << items[0];
        for (std::size_t k = 1; k < items.size(); ++k)
            ASSERT_EQ(items[k], items[k - 1] + 1) << "item " << k << " after the kill";
    }

    Part part;
    int nextItem;
    std::unique_ptr<Peer> survivor;
    std::unique_ptr<Traced> victim;
};

std::vector<std::string> callsOf(const Part &part, bool beside)
{
    Scene scene(part, beside);
    std::vector<std::string> calls;
    do
        calls.push_back(scene.process().where());
    while (scene.process().next());
    scene.process().peer.kill();
    return calls;
}

void expectCalls(const std::vector<std::string> &calls, std::initializer_list<const char *> expected)
{
    std::string all;
    for (const std::string &call : calls)
        all += call + "; ";
    for (const std::string call : expected)
        for (const char *side : {" before;", " after;"})
            EXPECT_NE(all.find(call + side), std::string::npos) << call << side << " in " << all;
}

std::size_t killAtEachCall(const Part &part, bool beside, std::initializer_list<const char *> expected)
{
    const std::vector<std::string> calls = callsOf(part, beside);
    expectCalls(calls, expected);
    // A short run takes some of them, other ones each time.
    const std::size_t step = longRun() ? 1 : 5;
    const std::size_t first = std::random_device()() % step;
    for (std::size_t point = first; point < calls.size() && !testing::Test::HasFailure(); point += step) {
        Scene scene(part, beside);
        bool reached = true;
        for (std::size_t k = 0; k < point; ++k)
            reached = reached && scene.process().next();
        EXPECT_TRUE(reached && scene.process().where() == calls[point]) << "point " << point << " was not reached";
        scene.kill(calls[point] + ", point " + std::to_string(point));
    }
    return (calls.size() - first + step - 1) / step;
}

/// A short run goes no further into the long loops over the whole segment, nor behind them.
std::size_t furthest()
{
    return longRun() ? 1000000 : 4000;
}

/// The number of instructions from each stop to the next system call.
std::vector<std::size_t> instructionsOf(const Part &part, bool beside, int drained)
{
    Scene scene(part, beside, drained);
    std::vector<std::size_t> counts;
    do {
        std::size_t count = 0;
        const bool behindCall = scene.process().where().ends_with("after");
        while (behindCall && count < furthest() && scene.process().stepInstruction())
            ++count;
        counts.push_back(count);
    } while (scene.process().next());
    scene.process().peer.kill();
    return counts;
}

/// Up to that many instructions of a stretch, evenly spread; of a long one at its beginning and its end, since the
/// loops between them do the same all the time.
std::vector<std::size_t> pointsIn(std::size_t stretch, std::size_t most)
{
    static std::minstd_rand random(std::random_device{}());
    constexpr std::size_t part = 2000;
    const std::size_t covered = std::min(stretch, 2 * part);
    const std::size_t count = std::min(covered, most);
    std::vector<std::size_t> points;
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t from = covered * k / count, to = covered * (k + 1) / count;
        const std::size_t point = from + random() % (to - from);
        points.push_back(point < part ? point : point + stretch - covered);
    }
    return points;
}

std::size_t killBetweenInstructions(const Part &part, bool beside, std::size_t mostPerStretch, int drained = wholeBatch)
{
    const std::vector<std::size_t> counts = instructionsOf(part, beside, drained);
    std::size_t kills = 0;
    for (std::size_t stop = 0; stop < counts.size(); ++stop) {
        for (std::size_t instruction : pointsIn(counts[stop], mostPerStretch)) {
            if (testing::Test::HasFailure())
                return kills;
            Scene scene(part, beside, drained);
            const std::string where = "instruction " + std::to_string(instruction) + " of " +
                                      std::to_string(counts[stop]) + " behind stop " + std::to_string(stop);
            bool reached = true;
            for (std::size_t call = 0; call < stop; ++call)
                reached = reached && scene.process().next();
            EXPECT_TRUE(reached && scene.process().stepInstructions(instruction)) << where << " was not reached";
            scene.kill("before " + where);
            ++kills;
        }
    }
    return kills;
}

class Killed : public Stress
{
};

TEST_F(Killed, AtEachSystemCallOfLoadingOpeningAndLeaving)
{
    for (Rounds rounds("killed at each call of load, open and unload", 1); rounds.another();) {
        std::size_t points = 0;
        for (bool beside : {false, true}) {
            points += killAtEachCall(loading, beside, {"openat", "semget", "semop", "shmget", "shmat", "shmctl"});
            points += killAtEachCall(opening, beside, {"flock", "semop", "ioctl"});
            points += killAtEachCall(leaving, beside, {"semop", "shmdt", "shmctl"});
        }
        rounds.note("points", points);
    }
}

TEST_F(Killed, AtEachSystemCallOfEachLockedOperation)
{
    for (Rounds rounds("killed at each call of the locked operations", 1); rounds.another();) {
        std::size_t points = 0;
        for (const char *operation : operations)
            for (bool beside : {false, true})
                points += killAtEachCall({std::string("do ") + operation}, beside, {"semop", "ioctl"});
        rounds.note("points", points);
    }
}

TEST_F(Killed, BetweenInstructionsOfLoading)
{
    const std::size_t most = longRun() ? 3 : 1;
    for (Rounds rounds("killed between instructions of load", 1); rounds.another();) {
        std::size_t kills = 0;
        for (bool beside : {false, true})
            kills += killBetweenInstructions(loading, beside, most);
        rounds.note("kills", kills);
    }
}

TEST_F(Killed, BetweenInstructionsOfTheOperationsThatChangeTables)
{
    const std::size_t most = longRun() ? 10 : 5;
    for (Rounds rounds("killed between instructions of operations", 1); rounds.another();) {
        std::size_t kills = 0;
        for (const char *operation : {"SetOutputBit", "SetOnPeriodOutputs", "ConfigureEEPROM"})
            kills += killBetweenInstructions({std::string("do ") + operation}, true, most);
        rounds.note("kills", kills);
    }
}

TEST_F(Killed, BetweenInstructionsOfTakingAnItem)
{
    const std::size_t most = longRun() ? 40 : 20;
    for (Rounds rounds("killed between instructions of taking an item", 1); rounds.another();) {
        std::size_t kills = 0;
        for (int drained : {1, wholeBatch})
            kills += killBetweenInstructions({"do ReceiveByteWithTimestamp"}, true, most, drained);
        rounds.note("kills", kills);
    }
}

}  // namespace

}  // namespace stress
