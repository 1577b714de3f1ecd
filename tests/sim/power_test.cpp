// What a board keeps and what it loses when it is pulled off, and the 16 places where boards are plugged.
#include "sim/board/virtual_boards.h"
#include "sim/peripherals/make_peripheral.h"
#include "tests/sim/sim_test.h"

namespace sim::power_test
{

using namespace std::chrono_literals;

using PowerTest = EveryModel;
INSTANTIATE_TEST_SUITE_P(Models, PowerTest, testing::ValuesIn(everyModel), nameOfParameter);

TEST_P(PowerTest, AReplugLosesWhatNoBatteryHolds)
{
    board.boardNumber(3).hopper(5, 20).serialPeripheral(1, makePeripheral("loopback"));
    ask(3, 2, {64, 2, 0x7F, 0xFF, 0x51});
    ask(4, 2, {2, 0x10, 0, 0xAA, 0xBB});
    ask(20, 5, bytesOf32le(500));
    ask(77, 1, {0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    ask(85, 1, {3});
    ask(78, 1, {100, 1});
    ask(108, 1, {5, 1});
    ask(112, 1, GetParam() == Model::R20 ? Bytes{5, 0, 1, 9, 0, 9, 0} : Bytes{5, 0, 1, 9, 0, 9, 0, 0});
    ask(86, 1, {3, 0, 200, 0});
    ask(87, 1, {0, 2, 0, 0});
    ask(98, 4, {1, 2, 3});
    ask(94, 7);
    board.sram().set(0x4000, 0x77);
    board.switches().open(2);
    board.unplug();
    board.unplug();
    EXPECT_EQ(refusal(75, 1), -1);
    pass(60s);
    board.plug();

    const BoardState state = board.state();
    EXPECT_FALSE(state.firmwareRunning);
    EXPECT_FALSE(state.eepromConfigured);
    EXPECT_EQ(state.outputsLit, Pattern{});
    EXPECT_EQ(state.brightness, 10U);
    EXPECT_TRUE(state.counters.empty());
    EXPECT_EQ(state.hoppers.at(0).stock, 20U);
    EXPECT_EQ(state.hoppers.at(0).status, hopperIdle);
    EXPECT_EQ(state.reels[0].motion, "still");
    EXPECT_EQ(state.serialPorts[1].waiting, 0U);
    EXPECT_EQ(state.serialPorts[1].peripheral, "loopback");
    EXPECT_FALSE(state.spiEnabled);

    EXPECT_EQ(state.boardNumber, 3U);
    EXPECT_EQ(board.eeprom().at(0x10), 0xAA);
    EXPECT_EQ(state.clock, 560U);
    EXPECT_EQ(state.switchLogLength, 1U);
    EXPECT_EQ(board.sram().at(0x4000), 0x77);
    EXPECT_EQ(board.firmware().image()[0], 0);
    EXPECT_EQ(refusal(75, 1), statusNoFirmware);
}

TEST(VirtualBoardsTest, AttributesComeAndGoWithTheBoard)
{
    ManualClock time;
    VirtualBoards boards(time);
    boards.plug(0, Model::R20);
    boards.plug(7, Model::R20s);
    EXPECT_EQ(boards.productText(0), "Sorvane R20 Board\n");
    EXPECT_EQ(boards.productText(1), std::nullopt);
    EXPECT_EQ(boards.speedText(16), std::nullopt);
    boards.find(0)->unplug();
    EXPECT_EQ(boards.productText(0), std::nullopt);
    EXPECT_NE(boards.find(0), nullptr);
    EXPECT_THROW(boards.plug(16, Model::R20), std::out_of_range);

    const auto held = boards.hold(7);
    boards.remove(7);
    EXPECT_EQ(boards.find(7), nullptr);
    EXPECT_FALSE(held->plugged());
}

TEST(StateTest, ShowsTheLastExchangesAndTheWholeBoard)
{
    ManualClock time;
    VirtualBoard board(Model::R20s, time);
    board.highSpeed().eeprom(E24LC08).firmwareRunning();
    for (unsigned char level = 0; level < 10; ++level)
        board.exchange(85, 1, &level, 1);
    board.inputs().set(4, true);
    board.answerNext({1});
    const BoardState state = board.state();
    EXPECT_EQ(state.model, Model::R20s);
    EXPECT_TRUE(state.highSpeed);
    EXPECT_EQ(state.eepromType, "24LC08");
    EXPECT_EQ(state.inputs[0], 0x10);
    EXPECT_EQ(state.exchangeCount, 10U);
    ASSERT_EQ(state.lastExchanges.size(), 8U);
    EXPECT_EQ(state.lastExchanges.back().sent, Bytes{9});
    EXPECT_EQ(state.pendingFaults, 1U);
}

}  // namespace sim::power_test
