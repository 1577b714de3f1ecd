// When a condition has held: over what a board did since a point in its journal.
#include "sim/language/watch.h"
#include "sim/peripherals/cctalk_acceptor.h"
#include "tests/sim/sim_test.h"

namespace sim::conditions_test
{

using std::chrono::milliseconds;

class ConditionTest : public BoardTest
{
public:
    ConditionTest()
    {
        board.hopper(5, 3).serialPeripheral(0, std::make_unique<CcTalkAcceptor>());
        ask(3, 2, {64, 2, 0x7F, 0xFF, 0x51});
        ask(4, 2, {4, 8, 0, 42, 0, 0, 0});
        pass(milliseconds(1000));
    }

    Watch watch(const std::string &words, std::optional<Point> from = std::nullopt)
    {
        WordStream stream({words});
        const ConditionReading condition = ConditionReading::parse(stream);
        stream.end();
        return Watch(condition, board, from.value_or(pointNow(board)));
    }

    // A board for each case.
    void TestBody() override {}
};

const struct Case {
    const char *condition;
    const char *happens;
    std::function<void(ConditionTest &test)> act;
    bool held;
} cases[] = {
    {"output 1 lit", "it flashes in the on period, which is now",
     [](auto &t) {
         t.ask(83, 1, {2, 0, 0, 0, 0});
     },
     true},
    {"output 1 lit", "it flashes in the off period, too short a time",
     [](auto &t) {
         t.ask(84, 1, {2, 0, 0, 0, 0});
     },
     false},
    {"output 1 lit", "and long enough",
     [](auto &t) {
         t.ask(84, 1, {2, 0, 0, 0, 0});
         t.pass(milliseconds(401));
     },
     true},
    {"output 1 lit", "a pulse has come and gone",
     [](auto &t) {
         t.ask(78, 1, {5, 1});
     },
     true},
    {"output 1 on", "a pulse does not count",
     [](auto &t) {
         t.ask(78, 1, {5, 1});
     },
     false},
    {"output 1 on", "on in both periods, for a moment",
     [](auto &t) {
         t.ask(77, 1, {2, 0, 0, 0, 0, 0, 0, 0, 0, 0});
         t.ask(77, 1, {0, 0, 0, 0, 0, 2, 0, 0, 0, 0});
     },
     true},
    {"output 1 flashing", "one period after the other is switched on",
     [](auto &t) {
         t.ask(83, 1, {2, 0, 0, 0, 0});
         t.ask(84, 1, {2, 0, 0, 0, 0});
     },
     true},
    {"not output 1 off", "nothing", [](auto &) {}, false},
    {"input 2 on", "a pulse has come and gone", [](auto &t) { t.board.inputs().pulse(2); }, true},
    {"not input 2 off", "the same", [](auto &t) { t.board.inputs().pulse(2); }, true},
    {"input 2 on", "another input", [](auto &t) { t.board.inputs().pulse(3); }, false},
    {"counter 2 >= 2", "one pulse",
     [](auto &t) {
         t.ask(108, 1, {2, 1});
         t.board.inputs().pulse(2);
     },
     false},
    {"hopper 5 paid = 1", "it pays",
     [](auto &t) {
         t.ask(112, 1, {5, 0, 1, 37, 0, 1, 0, 0}), t.pass(milliseconds(200));
     },
     true},
    {"hopper 5 stock < 3", "it is about to",
     [](auto &t) {
         t.ask(112, 1, {5, 0, 1, 37, 0, 1, 0, 0});
     },
     false},
    {"not hopper 5 empty", "nothing", [](auto &) {}, true},
    {"hopper 5 jammed", "it is, and is freed",
     [](auto &t) { t.board.hoppers().at(5).jam(), (void)t.board.hoppers(), t.board.hoppers().at(5).jam(false); }, true},
    {"reel 1 turning", "nothing", [](auto &) {}, false},
    {"eeprom 9 = 2B 00", "a write that overlaps it",
     [](auto &t) {
         t.ask(4, 2, {2, 8, 0, 0, 0x2B});
     },
     true},
    {"eeprom 8 = 2A 00", "it is overwritten",
     [](auto &t) {
         t.ask(4, 2, {1, 9, 0, 7});
     },
     true},
    {"serial 0 sent \"Hi\\x01\"", "it comes in two pieces",
     [](auto &t) {
         t.ask(98, 3, {'?', 'H'}), t.ask(98, 3, {'i', 1, '!'});
     },
     true},
    {"serial 0 sent \"Hi\"", "other bytes, and on the other port",
     [](auto &t) {
         t.ask(98, 3, {'i', 'H'}), t.ask(98, 4, {'H', 'i'});
     },
     false},
    {"operation GetClock", "it is asked", [](auto &t) { t.ask(21, 5); }, true},
    {"operation SetOutputBit", "what several operations send",
     [](auto &t) {
         t.ask(77, 1, {2, 0, 0, 0, 0, 0, 0, 0, 0, 0});
     },
     true},
    {"operation GetClock", "something else is asked", [](auto &t) { t.ask(75, 1); }, false},
    {"quiet 1s", "nothing, and it was so before", [](auto &) {}, true},
    {"quiet 1100ms", "an exchange", [](auto &t) { t.ask(75, 1), t.pass(milliseconds(1000)); }, false},
    {"not quiet 1s", "the same", [](auto &t) { t.ask(75, 1); }, true},
    {"not plugged", "it is pulled off and plugged in", [](auto &t) { t.board.powerCycle(); }, true},
    {"not firmware running", "while a board is unplugged nothing else holds", [](auto &t) { t.board.unplug(); }, false},
    {"not firmware running", "but then it does", [](auto &t) { t.board.powerCycle(); }, true},
};

TEST_F(ConditionTest, IsJudgedOnEveryMomentSinceThePoint)
{
    for (const Case &each : cases) {
        ConditionTest one;
        const Point point = pointNow(one.board);
        Watch live = one.watch(each.condition);
        each.act(one);
        (void)live.look(one.board);
        one.pass(milliseconds(99));
        EXPECT_EQ(live.look(one.board), each.held) << each.condition << ": " << each.happens;
        EXPECT_EQ(one.watch(each.condition, point).look(one.board), each.held) << each.condition << ", looking back";
    }
}

TEST_F(ConditionTest, EndsWithItsTimeAndKnowsWhenToLookAgain)
{
    board.inputs().pulse(2);
    board.inputs().pulse(2);  // on again at 40 ms
    pass(milliseconds(100));
    const Point point = pointBehind(board, board.events().last() - 3);
    EXPECT_EQ(point.time, milliseconds(1000));
    EXPECT_FALSE(watch("not input 2 on", point).look(board, milliseconds(1019)));
    EXPECT_TRUE(watch("not input 2 on", point).look(board, milliseconds(1020)));
    Watch lit = watch("output 1 lit");
    EXPECT_EQ(lit.nextMoment(board), milliseconds(1500));
    EXPECT_EQ(watch("quiet 3s").nextMoment(board), milliseconds(3000));
    board.inputs().pulse(2);
    board.inputs().pulse(2);
    EXPECT_EQ(lit.nextMoment(board), milliseconds(1120));
}

TEST_F(ConditionTest, TellsWhatIsAndWhatWasLost)
{
    Watch early = watch("input 2 on");
    for (std::size_t i = 0; i <= journal::Ring::capacity; ++i)
        ask(75, 1);
    EXPECT_FALSE(early.look(board));
    EXPECT_EQ(early.situation(board, {}), "  now: input 2 off\n  nothing has happened to it so far\n"
                                          "  1 events were gone from the journal before they were looked at");
    board.inputs().set(2, true);
    EXPECT_TRUE(early.look(board));
    EXPECT_THROW(watch("eeprom 32767 = 1 2"), UsageError);
}

}  // namespace sim::conditions_test
