// Programs that open the same boards at once, from outside: it is not linked with the library, and runs where
// opening_test.sh has put six boards, the models at full and at high speed, with their device numbers as board numbers.
#include "tests/processes/outside.h"

#include <cstdlib>
#include <sstream>
#include <thread>
#include <vector>

namespace opening
{

namespace
{

using std::chrono::milliseconds;
using tests::Peer;
using tests::Rounds;

constexpr int deviceCount = 6;
constexpr int chunks[deviceCount] = {279, 64, 255, 57, 258, 58};  // of the image, by device

void ctl(const std::string &command)
{
    const char *const sim = std::getenv("SORVANE_SIM");
    ASSERT_TRUE(sim) << "opening_test.sh says where sorvane-sim is";
    const std::string line = std::string(sim) + " ctl --board " + command;
    ASSERT_EQ(std::system(line.c_str()), 0) << line;
}

/// Takes its firmware from a board.
void replug(int device, const std::string &slowness = "300us")
{
    for (const std::string &command : {std::string(" unplug"), std::string(" plug"), " slow " + slowness})
        ctl(std::to_string(device) + command);
}

/// A program that does these orders from its start on; one in two is of the other width.
struct Program {
    explicit Program(std::initializer_list<std::string> orders) : peer(width(), Peer::Start::Held)
    {
        peer.release();
        for (const std::string &order : orders)
            peer.tell(order);
    }
    static const char *width()
    {
        static unsigned int made = 0;
        static const bool both = !std::getenv("OPENING_IN_ONE_WIDTH");
        return both && ++made % 2 ? OTHER_WIDTH_OPENING_WORKER : OPENING_WORKER;
    }
    std::string answer() { return started().answer(); }
    bool waits() { return !started().answers(30); }
    Peer &started()
    {
        peer.awaitReady();
        return peer;
    }

    Peer peer;
};

/// What programs did together.
struct Sum {
    void add(Program &program, const std::string &expected = "1 0")
    {
        std::istringstream words(program.answer());
        std::string result, code;
        int values[3] = {};
        words >> result >> code >> values[0] >> values[1] >> values[2];
        EXPECT_EQ(result + " " + code, expected);
        begun += values[0];
        ended += values[1];
        configured += values[2];
    }
    /// A detection tries one type first and configures the one that it found at last.
    void expect(int downloads, int detections) const
    {
        EXPECT_EQ(begun, downloads);
        EXPECT_EQ(ended, downloads);
        EXPECT_EQ(configured, 2 * detections);
    }

    int begun = 0, ended = 0, configured = 0;
};

void leave(std::vector<Program> &programs)
{
    for (Program &program : programs)
        EXPECT_TRUE(program.peer.quit());
    programs.clear();
}

class Opening : public testing::Test
{
protected:
    void SetUp() override
    {
        for (int device = 0; device < deviceCount; ++device)
            replug(device);
    }
    void TearDown() override { tests::removeEverything(); }
};

TEST_F(Opening, TogetherLoadsAndDetectsOnce)
{
    const std::size_t counts[] = {2, 4, 16};
    const milliseconds gaps[] = {milliseconds(0), milliseconds(7), milliseconds(60)};
    Rounds rounds("programs that open a board together", 6, 200);
    for (; rounds.another();) {
        // 54 rounds have every combination, six in a row every board.
        const int n = rounds.done(), device = n % deviceCount;
        const std::size_t count = counts[(n + n / 6) % 3];
        const milliseconds gap = gaps[(n / 2 + n / 18) % 3];
        SCOPED_TRACE(std::to_string(count) + " programs, device " + std::to_string(device) + ", " +
                     std::to_string(gap.count()) + " ms apart");
        replug(device);
        std::vector<Program> programs;
        for (std::size_t k = 0; k < count; ++k) {
            programs.push_back(Program({"open " + std::to_string(device)}));
            std::this_thread::sleep_for(gap);
        }
        Sum sum;
        for (Program &program : programs)
            sum.add(program);
        sum.expect(1, 1);
        leave(programs);
        rounds.note("openings", count);
    }
}

TEST_F(Opening, BySearchBesideEachOtherLoadsAndDetectsOnce)
{
    std::vector<Program> programs;
    for (const char *order : {"init", "find 5", "open 5", "find 2", "open 0", "find 5"})
        programs.push_back(Program({order}));
    Sum sum;
    for (Program &program : programs)
        sum.add(program);
    sum.expect(deviceCount, deviceCount);
    leave(programs);
}

TEST_F(Opening, WaitsForWhoPreparesTheBoardUntilThatOneIsKilled)
{
    for (Rounds rounds("killed before an exchange of its opening", 1); rounds.another();) {
        for (int device : {1, 3, 5}) {
            const int last = chunks[device] + 3;
            const int points = tests::longRun() ? last + 5 : 20;
            for (int point = 0; point < points && !HasFailure(); ++point) {
                const int exchange = tests::longRun() ? 1 + point : 1 + point * (last - 1) / (points - 1);
                SCOPED_TRACE("device " + std::to_string(device) + ", exchange " + std::to_string(exchange));
                replug(device, "0s");
                const std::string open = "open " + std::to_string(device);
                Program victim({"stop " + std::to_string(exchange), open});
                EXPECT_EQ(victim.answer(), "stopped");
                Program next({"signals", open});
                EXPECT_TRUE(next.waits());
                victim.peer.kill();
                Sum sum;
                sum.add(next);
                EXPECT_EQ(sum.begun, exchange <= last);
                EXPECT_TRUE(next.peer.quit());
                rounds.note("kills", 1);
            }
        }
    }
}

TEST_F(Opening, GoesOnAtOnceWhenWhoPreparesTheBoardIsKilledInASlowExchange)
{
    ctl("4 slow 60s count 1");
    Program victim({"say 1", "open 4"});
    EXPECT_EQ(victim.answer(), "asking");
    Program next({"open 4"});
    EXPECT_TRUE(next.waits());
    victim.peer.kill();
    ctl("4 slow 0s");  // should it never have come that far
    Sum sum;
    sum.add(next);
    sum.expect(1, 1);
    EXPECT_TRUE(next.peer.quit());
}

TEST_F(Opening, WaitsForNoChildThatWasForkedMeanwhile)
{
    std::vector<Program> programs;
    programs.push_back(Program({"fork 9", "open 2"}));
    Sum sum;
    sum.add(programs[0]);
    programs.push_back(Program({"open 2"}));
    sum.add(programs[1]);
    sum.expect(1, 1);
    leave(programs);
}

TEST_F(Opening, LoadingTheFirmwareAloneWaitsToo)
{
    ctl("4 fail status 99 count 2 request 72");
    std::vector<Program> programs;
    programs.reserve(2);
    for (int k = 0; k < 2; ++k)
        programs.push_back(Program({"open 4"}));
    Sum refused, loaded;
    for (Program &program : programs)
        refused.add(program, "0 99");
    for (Program &program : programs)
        program.peer.tell("load");
    for (Program &program : programs)
        loaded.add(program);
    EXPECT_EQ(loaded.begun - refused.begun, 1);
    EXPECT_EQ(loaded.ended, 1);
    leave(programs);
}

}  // namespace

}  // namespace opening
