// What happens on a board, as its journal tells it.
#include "journal/json_lines.h"
#include "journal/summary.h"
#include "sim/peripherals/cctalk_acceptor.h"
#include "tests/sim/sim_test.h"

namespace sim::journal_test
{

class JournalTest : public BoardTest
{
public:
    /// What has been written down since the last time: milliseconds behind `since` and text a line.
    std::string newLines(Nanoseconds since)
    {
        std::string lines;
        for (const journal::Ring &ring = board.events(); read_ < ring.last();) {
            const journal::Event &event = ring.at(++read_);
            EXPECT_EQ(event.number, read_);
            EXPECT_EQ(journal::eventFrom(journal::jsonOf(event)), event);
            if (event.kind != journal::Kind::Exchange)
                lines += std::to_string((event.time - since) / std::chrono::milliseconds(1)) + " " +
                         journal::textOf(event) + "\n";
        }
        return lines;
    }

private:
    std::uint64_t read_ = 0;
};

TEST_F(JournalTest, TellsWhatFollowsFromEachActAtItsTime)
{
    const struct {
        const char *act;
        std::function<void()> doIt;
        const char *lines;
    } acts[] = {
        {"a board is set up", [&] { board.hopper(5, 3).serialPeripheral(0, std::make_unique<CcTalkAcceptor>()); },
         "0 firmware running\n0 hopper 5 stock = 3\n0 hopper 5 not empty\n"},
        {"an input is set and pulsed", [&] { board.inputs().set(3, true), board.inputs().pulse(2, 2); },
         "0 input 3 on\n0 input 2 on\n20 input 2 off\n40 input 2 on\n60 input 2 off\n"},
        {"a coin is counted",
         [&] {
             ask(108, 1, {6, 1}), board.inputs().pulse(6), pass(std::chrono::milliseconds(20)), board.insertCoin(4);
         },
         "0 input 6 on\n0 counter 6 = 1\n20 input 6 off\n20 coin 4 in\n"},
        {"outputs are switched, flash and pulse",
         [&] {
             ask(77, 1, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0}), ask(83, 1, {3, 0, 0, 0, 0}), ask(78, 1, {5, 1});
         },
         "0 output 0 on\n0 output 1 flashing\n0 output 1 flashing, pulsed on\n50 output 1 flashing\n"},
        {"a hopper pays",
         [&] {
             ask(112, 1, {5, 0, 1, 37, 0, 1, 0, 0});
         },
         "0 hopper 5 paying\n0 output 37 off, driven by a release\n"
         "200 hopper 5 stock = 2\n200 input 5 on\n200 hopper 5 paid = 1\n200 hopper 5 not paying\n200 output 37 "
         "off\n220 input 5 off\n"},
        {"reels turn and rest by themselves",
         [&] {
             ask(86, 1, {3, 0, 200, 0}), ask(87, 1, {1, 1, 0, 100}), ask(87, 1, {2, 2, 0, 0});
         },
         "0 reel 1 turning\n0 reel 2 turning\n400 reel 1 still\n"},
        {"a serial port sends, and its peripheral answers",
         [&] {
             ask(98, 3, {2, 0, 1, 254, 255});
         },
         "0 serial 0 sent 02 00 01 FE FF\n10 serial 0 received 01 00 02 00 FD\n"},
        {"memories are written",
         [&] {
             ask(3, 2, {64, 2, 0x7F, 0xFF, 0x51}), ask(4, 2, {2, 8, 0, 0x2A, 0}), ask(117, 6, {1, 0, 1, 2, 0, 9});
         },
         "0 eeprom 8 = 2A 00 (was 8F 2E)\n0 sram 16386 = 09 (was 00)\n"},
        {"an exchange is refused on demand", [&] { board.faults().add(Fault::status(30)), refusal(75, 1); },
         "0 fault status 30\n"},
        {"the board is pulled off and plugged in", [&] { board.powerCycle(); },
         "0 unplugged\n0 firmware missing\n0 counter 6 = 0\n0 hopper 5 paid = 0\n0 output 0 off\n"
         "0 output 1 off\n0 reel 2 still\n0 plugged\n"},
    };
    for (const auto &act : acts) {
        const Nanoseconds start = time.now();
        act.doIt();
        pass(std::chrono::seconds(2));
        EXPECT_EQ(newLines(start), act.lines) << act.act;
    }
}

TEST_F(JournalTest, KeepsTheLastAndCountsWhatIsLostExactly)
{
    for (std::size_t i = 0; i < journal::Ring::capacity + 10; ++i)
        ask(75, 1);
    const journal::Ring &ring = board.events();  // the firmware's event is among the lost
    EXPECT_EQ(ring.last(), journal::Ring::capacity + 11);
    EXPECT_EQ(ring.first(), 12U);
    EXPECT_EQ(ring.at(12).number, 12U);
    EXPECT_EQ(ring.lostSince(5), 6U);
    EXPECT_EQ(ring.lostSince(11), 0U);
}

TEST_F(JournalTest, SumsUpTheExchanges)
{
    ask(75, 1);
    ask(21, 5);
    ask(75, 1);
    board.faults().add(Fault::status(30));
    refusal(75, 1);
    board.faults().add(Fault::ioctlFails(5));
    refusal(21, 5);
    journal::Summary summary;
    for (std::uint64_t number = 1; number <= board.events().last(); ++number)
        summary.add(board.events().at(number));
    EXPECT_EQ(summary.text(), "        3  GetInputs (1 refused)\n        2  GetClock (1 failed)\n");
}

}  // namespace sim::journal_test
