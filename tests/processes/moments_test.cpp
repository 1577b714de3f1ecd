// A process stopped before and after each of its system calls, and between its instructions, and then killed or let go
// on: alone, beside one that lives on, and while another lives its whole life or waits for that.
#include "tests/processes/scene.h"

#include <algorithm>
#include <random>
#include <vector>

namespace tests::moments
{

namespace
{

const std::vector<std::string> lockedOperations =
    wordsOf("SetOutputBit ModifyOutputs SetOutputs SetOnPeriodOutputs SetOffPeriodOutputs SetOnPeriodOutputBit "
            "SetOffPeriodOutputBit ConfigureEEPROM CheckEEPROM ReadEEPROM WriteEEPROM ReceiveByteWithTimestamp "
            "ReceiveByteWithTimestamp9BitData");

const Setting joinings[] = {{loading, Company::Joiner},
                            {leaving, Company::Joiner},
                            {loading, Company::Joiner, Fate::GoesOn},
                            {leaving, Company::Joiner, Fate::GoesOn}};

struct Stop {
    std::string where;
    std::size_t instructions = 0;  // to the next system call, as far as they were counted
};

/// The stops of a part, with up to so many instructions behind each call.
std::vector<Stop> stopsOf(const Setting &setting, std::size_t furthest = 0)
{
    Peer().quit();  // makes the key files, which stay
    Scene scene(setting);
    std::vector<Stop> stops;
    do {
        Stop stop{scene.process().where()};
        if (segment() != -1 && arenaMutexHolder() == 0) {
            EXPECT_EQ(Attached().text(batches), "R20BUFFERS") << "the mutex is free before the last object is made";
        }
        while (stop.where.ends_with("after") && stop.instructions < furthest && scene.process().stepInstruction())
            ++stop.instructions;
        stops.push_back(stop);
    } while (scene.process().next());
    scene.process().peer.kill();
    return stops;
}

struct Count {
    std::size_t points = 0;
    std::size_t waited = 0;
};

Count endAtEach(const Setting &setting, const std::vector<Stop> &stops, const std::vector<Moment> &moments)
{
    Count count;
    for (const Moment &moment : moments) {
        if (testing::Test::HasFailure())
            break;
        const Stop &stop = stops[moment.stop];
        SCOPED_TRACE("\"" + setting.part.line + "\", " + std::to_string(moment.instruction) + " instructions of " +
                     std::to_string(stop.instructions) + " behind stop " + std::to_string(moment.stop) + ", " +
                     stop.where + ", company " + std::to_string(static_cast<int>(setting.company)) +
                     (setting.fate == Fate::IsKilled ? ", then killed" : ", then going on"));
        Scene scene(setting);
        EXPECT_TRUE(scene.reach(moment) && scene.process().where() == stop.where) << "it was not reached";
        count.waited += scene.end();
        ++count.points;
    }
    return count;
}

/// A short run takes some of the calls, other ones each time.
Count endAtEachCall(const Setting &setting, std::initializer_list<const char *> expected)
{
    const std::vector<Stop> stops = stopsOf(setting);
    std::string all;
    for (const Stop &stop : stops)
        all += stop.where + "; ";
    for (const std::string call : expected)
        for (const char *side : {" before;", " after;"})
            EXPECT_NE(all.find(call + side), std::string::npos) << call << side << " in " << all;
    const std::size_t step = longRun() ? 1 : 5;
    std::vector<Moment> moments;
    for (std::size_t stop = std::random_device()() % step; stop < stops.size(); stop += step)
        moments.push_back({stop});
    return endAtEach(setting, stops, moments);
}

/// Up to that many instructions of a stretch, evenly spread; of a long one at its beginning and its end, since the
/// loops between them do the same all the time.
void addPointsIn(std::size_t stop, std::size_t stretch, std::size_t most, std::vector<Moment> &moments)
{
    static std::minstd_rand random(std::random_device{}());
    constexpr std::size_t part = 2000;
    const std::size_t covered = std::min(stretch, 2 * part);
    const std::size_t count = std::min(covered, most);
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t from = covered * k / count, to = covered * (k + 1) / count;
        const std::size_t point = from + random() % (to - from);
        moments.push_back({stop, point < part ? point : point + stretch - covered});
    }
}

Count endBetweenInstructions(const Setting &setting, std::size_t mostPerStretch)
{
    // A short run goes no further into the long loops over the whole segment, nor behind them.
    const std::vector<Stop> stops = stopsOf(setting, longRun() ? 1000000 : 4000);
    std::vector<Moment> moments;
    for (std::size_t stop = 0; stop < stops.size(); ++stop)
        addPointsIn(stop, stops[stop].instructions, mostPerStretch, moments);
    return endAtEach(setting, stops, moments);
}

TEST_F(Processes, AreKilledAtEachSystemCallOfLoadingOpeningAndLeaving)
{
    for (Rounds rounds("killed at each call of load, open and unload", 1); rounds.another();) {
        for (Company company : {Company::None, Company::Survivor}) {
            const std::size_t points =
                endAtEachCall({loading, company}, {"openat", "semget", "semop", "shmget", "shmat", "shmctl"}).points +
                endAtEachCall({opening, company}, {"flock", "semop", "ioctl"}).points +
                endAtEachCall({leaving, company}, {"semop", "shmdt", "shmctl"}).points;
            rounds.note("points", points);
        }
    }
}

TEST_F(Processes, AreKilledAtEachSystemCallOfEachLockedOperation)
{
    for (Rounds rounds("killed at each call of the locked operations", 1); rounds.another();)
        for (const std::string &operation : lockedOperations)
            for (Company company : {Company::None, Company::Survivor})
                rounds.note("points", endAtEachCall({{"do " + operation}, company}, {"semop", "ioctl"}).points);
}

TEST_F(Processes, AreKilledOrGoOnWhileOthersJoin)
{
    for (Rounds rounds("killed or going on while another joins", 1); rounds.another();) {
        for (const Setting &setting : joinings) {
            const Count atCalls = endAtEachCall(setting, {"semop", "shmctl"});
            const Count between = setting.fate == Fate::GoesOn ? endBetweenInstructions(setting, 1) : Count();
            EXPECT_GT(atCalls.waited, 0u);
            rounds.note("points", atCalls.points + between.points);
            rounds.note("points that made the other wait", atCalls.waited + between.waited);
        }
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

const Part setBit = {"do SetOutputBit"}, setAll = {"do SetOnPeriodOutputs"}, configure = {"do ConfigureEEPROM"};
const Part take = {"do ReceiveByteWithTimestamp"};
const Stretches stretches[] = {
    {"Loading", {{loading, Company::None}, {loading, Company::Survivor}}, 1, 3},
    {"OperationsThatChangeTables",
     {{setBit, Company::Survivor}, {setAll, Company::Survivor}, {configure, Company::Survivor}},
     2,
     10},
    {"TakingAnItem", {{take, Company::Survivor, Fate::IsKilled, 1}, {take, Company::Survivor}}, 6, 40},
};
INSTANTIATE_TEST_SUITE_P(Of, KilledBetweenInstructions, testing::ValuesIn(stretches),
                         [](const auto &info) { return info.param.what; });

TEST_P(KilledBetweenInstructions, TheyLoseNothingOfTheOthers)
{
    const std::size_t most = longRun() ? GetParam().mostOfLongRun : GetParam().most;
    for (Rounds rounds(std::string("killed between instructions: ") + GetParam().what, 1); rounds.another();)
        for (const Setting &setting : GetParam().settings)
            rounds.note("kills", endBetweenInstructions(setting, most).points);
}

}  // namespace

}  // namespace tests::moments

int main(int argc, char **argv)
{
    if (!tests::Traced::possible()) {
        std::puts("SKIPPED: no process can be traced here (an emulator runs this program, or the machine forbids it)");
        return 77;
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
