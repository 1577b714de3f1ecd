// A process killed before and after each of its system calls, and between its instructions: alone, beside one that
// lives on, and after another has joined or waits for it to go on.
#include <algorithm>
#include <iterator>
#include <memory>
#include <random>
#include <sstream>
#include <vector>

#include "tests/processes/outside.h"
#include "tests/processes/trace.h"
#include "tests/processes/tracer.h"

namespace tests::kills
{

namespace
{

constexpr int patience = 5000;  // ms, beside a traced process
constexpr int wholeBatch = 50;  // items of the stream that the other takes before: the next one fetches a batch

const Part loading = {""};
const Part leaving = {"quit"};
const Part opening = {"do open"};

enum class Company { none, survivor, joiner };

/// What the victim is killed in, and beside whom.
struct Setting {
    Part part;
    Company company;
    int drained = wholeBatch;
};

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
    explicit Scene(const Setting &setting)
        : part(setting.part), company(setting.company), nextItem(firstItem + setting.drained)
    {
        startNewTrace();
        sharedTrace().nextItem = firstItem;
        if (company == Company::survivor) {
            survivor = std::make_unique<Peer>(eitherWidth());
            EXPECT_EQ(survivor->ask("bit 0 1"), "1");
            survivor->ask("drain " + std::to_string(setting.drained));
        }
        victim = std::make_unique<Traced>(ownWidth());
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

    /// Kills it and looks at who lives on, at who starts now or started before, and at what is left at last.
    void kill(const std::string &where)
    {
        const char *const companies[] = {", alone", ", beside another", ", while another joins"};
        SCOPED_TRACE("\"" + part.line + "\" killed " + where + companies[static_cast<int>(company)]);
        Peer newcomer(eitherWidth(), Peer::Start::held);
        if (company == Company::joiner)
            join(newcomer);
        victim->peer.kill();
        if (survivor) {
            EXPECT_EQ(survivor->ask("bit 2 1", patience), "1");
            expectPattern(*survivor, 0x05);
            if (part.line.find("9Bit") == std::string::npos)  // mixing both forms shifts the items by right
                expectStream(*survivor);
        }
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

    /// Only a holder of the arena's mutex makes it wait.
    void join(Peer &newcomer) const
    {
        const bool waits = arenaMutexHolder() == victim->peer.id();
        newcomer.release();
        if (waits) {
            EXPECT_FALSE(newcomer.answers(30)) << "it joined although the arena's mutex is held";
        } else {
            newcomer.awaitReady(patience);
        }
    }

    /// The outputs of those that live are as they wanted them; the victim's own change has happened or not.
    void expectPattern(Peer &peer, unsigned int own) const
    {
        const bool whole =
            part.line.find("Outputs") != std::string::npos && part.line.find("Modify") == std::string::npos;
        for (const char *pattern : {"on", "off"}) {
            const std::string hex = peer.ask(pattern);
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
        std::istringstream numbers(peer.ask("drain 60"));
        const std::vector<int> items(std::istream_iterator<int>(numbers), {});
        ASSERT_EQ(items.size(), 60u);
        const bool batchDied = nextItem == 200 && items[0] == 300;
        EXPECT_TRUE(items[0] == nextItem || items[0] == nextItem + 1 || batchDied) << items[0];
        for (std::size_t k = 1; k < items.size(); ++k)
            ASSERT_EQ(items[k], items[k - 1] + 1) << "item " << k << " after the kill";
    }

    Part part;
    Company company;
    int nextItem;
    std::unique_ptr<Peer> survivor;
    std::unique_ptr<Traced> victim;
};

std::vector<std::string> callsOf(const Setting &setting)
{
    Scene scene(setting);
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

std::size_t killAtEachCall(const Setting &setting, std::initializer_list<const char *> expected)
{
    const std::vector<std::string> calls = callsOf(setting);
    expectCalls(calls, expected);
    // A short run takes some of them, other ones each time.
    const std::size_t step = longRun() ? 1 : 5;
    const std::size_t first = std::random_device()() % step;
    for (std::size_t point = first; point < calls.size() && !testing::Test::HasFailure(); point += step) {
        Scene scene(setting);
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
std::vector<std::size_t> instructionsOf(const Setting &setting)
{
    Scene scene(setting);
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

std::size_t killBetweenInstructions(const Setting &setting, std::size_t mostPerStretch)
{
    const std::vector<std::size_t> counts = instructionsOf(setting);
    std::size_t kills = 0;
    for (std::size_t stop = 0; stop < counts.size(); ++stop) {
        for (std::size_t instruction : pointsIn(counts[stop], mostPerStretch)) {
            if (testing::Test::HasFailure())
                return kills;
            Scene scene(setting);
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

constexpr Company aloneOrNot[] = {Company::none, Company::survivor};

TEST_F(Processes, AreKilledAtEachSystemCallOfLoadingOpeningAndLeaving)
{
    for (Rounds rounds("killed at each call of load, open and unload", 1); rounds.another();) {
        std::size_t points = 0;
        for (Company company : {Company::none, Company::survivor, Company::joiner}) {
            points += killAtEachCall({loading, company}, {"openat", "semget", "semop", "shmget", "shmat", "shmctl"});
            points += killAtEachCall({leaving, company}, {"semop", "shmdt", "shmctl"});
        }
        for (Company company : aloneOrNot)
            points += killAtEachCall({opening, company}, {"flock", "semop", "ioctl"});
        rounds.note("points", points);
    }
}

TEST_F(Processes, AreKilledAtEachSystemCallOfEachLockedOperation)
{
    for (Rounds rounds("killed at each call of the locked operations", 1); rounds.another();) {
        std::size_t points = 0;
        for (const char *operation : operations)
            for (Company company : aloneOrNot)
                points += killAtEachCall({{std::string("do ") + operation}, company}, {"semop", "ioctl"});
        rounds.note("points", points);
    }
}

struct Stretches {
    const char *what;
    std::vector<Setting> settings;
    std::size_t most, mostOfLongRun;  // kills in each stretch between two calls
};

class KilledBetweenInstructions : public Processes, public testing::WithParamInterface<Stretches>
{
};

INSTANTIATE_TEST_SUITE_P(
    Of, KilledBetweenInstructions,
    testing::Values(Stretches{"Loading", {{loading, Company::none}, {loading, Company::survivor}}, 1, 3},
                    Stretches{"OperationsThatChangeTables",
                              {{{"do SetOutputBit"}, Company::survivor},
                               {{"do SetOnPeriodOutputs"}, Company::survivor},
                               {{"do ConfigureEEPROM"}, Company::survivor}},
                              5,
                              10},
                    Stretches{"TakingAnItem",
                              {{{"do ReceiveByteWithTimestamp"}, Company::survivor, 1},
                               {{"do ReceiveByteWithTimestamp"}, Company::survivor}},
                              20,
                              40}),
    [](const auto &info) { return info.param.what; });

TEST_P(KilledBetweenInstructions, TheyLoseNothingOfTheOthers)
{
    for (Rounds rounds(std::string("killed between instructions: ") + GetParam().what, 1); rounds.another();) {
        std::size_t kills = 0;
        for (const Setting &setting : GetParam().settings)
            kills += killBetweenInstructions(setting, longRun() ? GetParam().mostOfLongRun : GetParam().most);
        rounds.note("kills", kills);
    }
}

}  // namespace

}  // namespace tests::kills
