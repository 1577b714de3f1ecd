// The cabinet file: what is read, how parts are found, and how each mistake is told.
#include "sim/cabinet/cabinet.h"

#include "sim/cabinet/grammar_words.h"
#include "sim/cabinet/template.h"
#include "sim/language/board_options.h"
#include "sim/language/cabinet_boards.h"
#include "sim/language/commands.h"
#include "sim/language/state_text.h"
#include "tests/sim/sim_test.h"

#include <set>

namespace
{

using cabinet::Cabinet;
using cabinet::Kind;

std::string mistakesOf(const std::string &text)
{
    try {
        (void)Cabinet::parse(text, "c");
        return "none";
    } catch (const cabinet::Error &error) {
        return error.what();
    }
}

// The board begins in line 2, the rest in line 5.
std::string mistakesOnBoard(const std::string &rest, const std::string &model = "R35")
{
    return mistakesOf("version = 1\n[[board]]\nmodel = \"" + model + "\"\ndevice = 0\n" + rest);
}

TEST(CabinetFile, TellsEveryMistakeWithItsLine)
{
    const std::string peripherals = "; allowed: loopback, cctalk, polled, sas";
    const std::string unique = "; allowed is one name for each";
    const struct {
        const char *text;
        std::string told;
    } cases[] = {
        {"speed = \"low\"", "c:5: board 0: speed is \"low\"; allowed: high, full"},
        {"number = 8\ncolour = 1",
         "c:5: board 0: number is 8; allowed: 0 to 7\nc:6: board 0: unknown key \"colour\"; allowed: name, device, "
         "model, "
         "speed, number, eeprom, firmware, eeprom_file, sram_file, inputs, outputs, coins, hoppers, reels, meters, "
         "switches, serial0, serial1"},
        {"firmware = true", "c:5: board 0: firmware is true; allowed: running, missing"},
        {"name = \"a.b\"", "c:5: board: name is \"a.b\"; allowed: a letter, then letters, digits, _ and -"},
        {"serial0 = \"mouse\"", "c:5: serial0: peripheral is \"mouse\"" + peripherals},
        {"serial1 = { name = \"x\" }", "c:5: serial1: peripheral is missing" + peripherals},
        {"serial0 = { name = \"x\", peripheral = \"polled\" }\nserial1 = { name = \"x\", peripheral = \"polled\" }",
         "c:6: serial1: the name \"x\" is serial0 (line 5); allowed is one for each"},
        {"inputs = 3", "c:5: inputs is no table; allowed is name = number, or name = { ... }, for each part"},
        {"inputs.a = 33", "c:5: input \"a\": number is 33; allowed: 0 to 32"},
        {"inputs.a = -1", "c:5: input \"a\": number is -1; allowed: 0 to 32"},
        {"inputs.a = \"3\\n\"", "c:5: input \"a\": number is \"3?\"; allowed: 0 to 32"},
        {"inputs.a = { active = \"low\" }", "c:5: input \"a\": number is missing; allowed: 0 to 32"},
        {"inputs.a = { number = 3, activ = 1 }", "c:5: input \"a\": unknown key \"activ\"; allowed: number, active"},
        {"inputs.a = { number = 25, active = \"low\" }",
         "c:5: input \"a\": it is a bit of the board number; allowed is active = \"high\" on inputs 24 to 26"},
        {"[board.inputs]\na = 3\nb = 4\nc = 3", "c:8: input \"c\": number 3 is input \"a\" (line 6)" + unique},
        {"inputs.9a = 3",
         "c:5: input \"9a\": it is no name for a part; allowed: a letter, then letters, digits, _ and -"},
        {"outputs.a = { number = 37, colour = \"#12345G\" }",
         "c:5: output \"a\": colour is \"#12345G\"; allowed: white, red, orange, yellow, green, blue, purple, pink, "
         "#RRGGBB"},
        {"outputs.a = 38", "c:5: output \"a\": number is 38; allowed: 0 to 37"},
        {"coins.a = 24", "c:5: coin \"a\": input is 24; allowed: 0 to 23"},
        {"serial1 = \"cctalk\"\ncoins.a = { cctalk = 17 }", "c:6: coin \"a\": cctalk is 17; allowed: 1 to 16"},
        {"coins.a = { cctalk = 1 }",
         "c:5: coin \"a\": there is no acceptor for it; allowed with serial0 or serial1 = \"cctalk\""},
        {"coins.a = { cctalk = 1, input = 1 }",
         "c:5: coin \"a\": it comes one way: allowed is input = 0 to 23, or cctalk = 1 to 16"},
        {"hoppers.a = 24", "c:5: hopper \"a\": input is 24; allowed: 0 to 23"},
        {"hoppers.a = { input = 1, output = 38 }", "c:5: hopper \"a\": output is 38; allowed: 0 to 37"},
        {"hoppers.a = { input = 1, stock = 65536 }", "c:5: hopper \"a\": stock is 65536; allowed: 0 to 65535"},
        {"reels.a = 3", "c:5: reel \"a\": number is 3; allowed: 0 to 2"},
        {"switches.a = 8", "c:5: switch \"a\": number is 8; allowed: 0 to 7"},
        {"eeprom = \"24LC01\"\nmeters.a = { address = 127, bytes = 2 }",
         "c:6: meter \"a\": it ends behind the EEPROM; allowed are addresses 0 to 127 on a 24LC01"},
        {"[board.meters]\na = 8\nb = { address = 12, bytes = 8 }\nc = { address = 6, bytes = 3 }",
         "c:8: meter \"c\": it lies on bytes of meter \"a\" (line 6); allowed are bytes of its own"},
        {"meters.a = { address = 1, bytes = 9, order = \"middle\" }",
         "c:5: meter \"a\": bytes is 9; allowed: 1 to 8\nc:5: meter \"a\": order is \"middle\"; allowed: big, little"},
        {"[[board]]\nname = \"b\"\ndevice = 0\nmodel = \"R20\"",
         "c:2: a board has no name; each of several needs one\n"
         "c:5: device 0 is another board (line 2); allowed is one board for each"},
    };
    for (const auto &each : cases)
        EXPECT_EQ(mistakesOnBoard(each.text), each.told) << each.text;

    EXPECT_EQ(mistakesOnBoard("serial0 = \"sas\"", "R20"), "c:5: serial0: an R20 has no SAS; allowed on R20s and R35");
    EXPECT_EQ(mistakesOnBoard("serial0 = \"sas\"", "R20s"), "none");
    EXPECT_EQ(mistakesOnBoard("", "R36"), "c:3: board 0: model is \"R36\"; allowed: R20, R20s, R35");
    const std::string board = "[[board]]\nname = \"b\"\ndevice = 1\nmodel = \"R20\"\n";
    EXPECT_EQ(mistakesOf("version = 1\n" + board + "[[board]]\nname = \"b\"\ndevice = 2\nmodel = \"R20\"\n"),
              "c:6: board \"b\": there is one already (line 2); allowed is a name for each");
    EXPECT_EQ(mistakesOf(board), "c:1: there is no version; allowed: version = 1");
    EXPECT_EQ(mistakesOf("\nversion = 2\ntables = []\n"), "c:2: version is 2; allowed: 1");
    EXPECT_EQ(mistakesOf("version = 1\n[board]\n"), "c:2: there is no board; allowed is [[board]] for each");
    EXPECT_EQ(mistakesOf("version = 1\nboard = [1]"), "c:2: a board is no table; allowed is [[board]] for each");
    EXPECT_EQ(mistakesOf("version = 1\nname = 1 2\n").rfind("c:2: ", 0), 0U);
    EXPECT_THROW(Cabinet::read("/dev/zero"), cabinet::Error);
}

TEST(CabinetFile, LendsNoWordOfTheCommandsAsAName)
{
    // Those of scenarios, and what stands in front of a line; the rest are the tables'.
    std::set<std::string> words{"at", "board", "end", "never", "not", "pause", "steps", "stop"};
    for (const sim::SyntaxTable *table : {&sim::commandSyntax(), &sim::conditionSyntax()})
        for (const std::string &word : sim::wordsIn(*table))
            words.insert(word);
    words.erase("=");
    EXPECT_EQ(words, std::set<std::string>(std::begin(cabinet::grammarWords), std::end(cabinet::grammarWords)));
    EXPECT_EQ(mistakesOnBoard("inputs.open = 3"),
              "c:5: input \"open\": it is no name for a part; allowed: a name that is no word of the commands");
}

constexpr char twoBoards[] = R"(version = 1
[[board]]
name = "main"
device = 3
model = "R35"
serial0 = { peripheral = "cctalk", name = "acceptor" }
inputs = { start = 8, slot = 2, token = 9 }
coins = { slot = 2, token = { cctalk = 4 } }
meters = { total = { address = 0x10, order = "big", bytes = 3 } }
[[board]]
name = "topper"
device = 5
model = "R20"
inputs = { start = 1, bell = 2, door = { number = 4, active = "low" } }
)";

TEST(CabinetLookUp, LeadsFromWordsToParts)
{
    const Cabinet cabinet = Cabinet::parse(twoBoards, "c");
    const auto found = [&cabinet](const std::vector<Kind> &kinds, const char *word, std::optional<int> device = {}) {
        try {
            const cabinet::Place place = cabinet.find(kinds, word, device);
            return (place.device ? std::to_string(*place.device) : "?") + " " + std::to_string(place.number) + " " +
                   (place.part ? place.part->name : "-");
        } catch (const cabinet::Error &error) {
            return std::string(error.what());
        }
    };
    EXPECT_EQ(found({Kind::Input}, "bell"), "5 2 bell");
    EXPECT_EQ(found({Kind::Input}, "start"), "which input \"start\"? Allowed: main.start, topper.start");
    EXPECT_EQ(found({Kind::Input}, "start", 5), "5 1 start");
    EXPECT_EQ(found({Kind::Input}, "main.start"), "3 8 start");
    EXPECT_EQ(found({Kind::Input}, "main.start", 5), "\"main.start\" is on board 3 and not on board 5");
    EXPECT_EQ(found({Kind::Input}, "top.start"), "there is no board \"top\"; allowed: main, topper");
    EXPECT_EQ(found({Kind::Input}, "bel", 5), "there is no input \"bel\"; allowed: a number, bell, door, start");
    EXPECT_EQ(found({Kind::Reel}, "bell"), "there is no reel \"bell\"; allowed: a number, since none has a name here");
    EXPECT_EQ(found({Kind::Input}, "0x8", 3), "3 8 start");
    EXPECT_EQ(found({Kind::Input}, "7"), "? 7 -");
    EXPECT_EQ(found({Kind::Input}, "7x"), "\"7x\" is neither a number nor a name; names begin with a letter");
    EXPECT_EQ(found({Kind::Input, Kind::Coin}, "slot"), "3 2 slot");
    EXPECT_EQ(found({Kind::Coin, Kind::CcTalkCoin}, "token"), "3 4 token");
    EXPECT_EQ(found({Kind::Input, Kind::CcTalkCoin}, "token"),
              "which \"token\"? Allowed are the numbers 4 (coin), 9 (input)");
    EXPECT_EQ(found({Kind::Serial}, "acceptor"), "3 0 acceptor");

    ASSERT_TRUE(cabinet.part(3, Kind::CcTalkCoin, 4));
    EXPECT_EQ(cabinet.part(3, Kind::CcTalkCoin, 4)->name, "token");
    EXPECT_FALSE(cabinet.part(3, Kind::Coin, 4));
    EXPECT_FALSE(cabinet.part(4, Kind::Input, 8));
    EXPECT_EQ(cabinet.deviceNamed("topper"), 5);
    const cabinet::Part &meter = *cabinet.find({Kind::Meter}, "total").part;
    EXPECT_EQ(meter.number, 16U);
    EXPECT_EQ(meter.bytes, 3U);
    EXPECT_TRUE(meter.bigEndian);
}

TEST(CabinetLookUp, LeadsCommandsToBoards)
{
    const Cabinet cabinet = Cabinet::parse(twoBoards, "c");
    sim::ManualClock clock;
    sim::VirtualBoards boards(clock);
    plugBoards(boards, sim::boardsFrom(sim::boardArguments(cabinet)));
    sim::Session session{boards, cabinet};
    // What each says, then which inputs of both boards are at their high level.
    const struct {
        const char *line;
        const char *said;
        std::vector<unsigned int> main, topper;
    } cases[] = {
        {"input bell on", "", {}, {2, 4}},
        {"input door on", "", {}, {2}},  // active low
        {"--board topper input 4 off", "", {}, {2, 4}},
        {"\"input door\" pulse", "", {}, {2}},
        {"--board main input start on", "", {8}, {2, 4}},
        {"coin slot", "", {2, 8}, {2, 4}},
        {"coin token", "", {8}, {2, 4}},
        {"--board 3 coin 9", "", {8}, {2, 4}},
        {"coin acceptor", "coin: there is no coin \"acceptor\"; allowed: a number, slot, token", {8}, {2, 4}},
        {"input start on", "input: which input \"start\"? Allowed: main.start, topper.start", {8}, {2, 4}},
        {"input 3 on", "which board? Say --board with one of: 3 (main), 5 (topper)", {8}, {2, 4}},
        {"--board main input bell on",
         "input: there is no input \"bell\"; allowed: a number, slot, start, token",
         {8},
         {2, 4}},
        {"--board mine unplug", "there is no board \"mine\"; allowed: 3 (main), 5 (topper)", {8}, {2, 4}},
    };
    for (const auto &step : cases) {
        std::string said;
        try {
            said = sim::Command::parse(sim::splitWords(step.line)).carryOut(session).text;
        } catch (const sim::UsageError &error) {
            said = error.what();
        }
        EXPECT_EQ(said, step.said) << step.line;
        EXPECT_EQ(sim::numbersOf(boards.find(3)->inputs().levels(), 33), step.main) << step.line;
        EXPECT_EQ(sim::numbersOf(boards.find(5)->inputs().levels(), 33), step.topper) << step.line;
        clock.advance(std::chrono::seconds(1));
    }
}

TEST(CabinetBoards, ArePluggedAsTheFileSays)
{
    sim::ManualClock clock;
    sim::VirtualBoards boards(clock);
    plugBoards(boards, sim::boardsFrom(sim::boardArguments(Cabinet::read(CABINETS "fruit_machine.toml"))));
    const sim::BoardState state = boards.find(0)->state();
    EXPECT_EQ(state.model, sim::Model::R35);
    EXPECT_TRUE(state.highSpeed);
    EXPECT_FALSE(state.firmwareRunning);
    EXPECT_EQ(state.inputs, (sim::Pattern{0, 1 << 1, 0, 0, 0})) << "the door is shut, which is the high level";
    ASSERT_EQ(state.hoppers.size(), 1U);
    EXPECT_EQ(state.hoppers[0].input, 5U);
    EXPECT_EQ(state.hoppers[0].stock, 20U);
    EXPECT_EQ(state.serialPorts[0].peripheral, "cctalk");
}

TEST(CabinetTemplate, IsReadAsItIsOnEveryModel)
{
    for (const sim::Model model : sim::everyModel)
        EXPECT_EQ(Cabinet::parse(cabinet::templateFor(model), "c").boards().at(0).model, model);
}

}  // namespace
