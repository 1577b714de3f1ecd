// Switches, battery, clock, random numbers, identity, SPI and diagnostics.
#include "tests/sim/sim_test.h"

namespace sim
{
namespace
{

using namespace std::chrono_literals;

using SecurityTest = EveryModel;
INSTANTIATE_TEST_SUITE_P(Models, SecurityTest, testing::ValuesIn(everyModel), nameOfParameter);

TEST_P(SecurityTest, TheClockRunsFromWhatItWasSetTo)
{
    ask(20, 5, {0x78, 0x56, 0x34, 0x12});
    pass(2999ms);
    EXPECT_EQ(ask(21, 5), (Bytes{0x7A, 0x56, 0x34, 0x12}));
}

TEST_P(SecurityTest, TheSwitchLogIsWalkedToItsEnd)
{
    board.switches().open(0);
    pass(10s);
    board.switches().open(3);
    board.switches().close(0);
    board.switches().close(0);
    for (int walk = 0; walk < 2; ++walk) {
        ask(40, 5);
        EXPECT_EQ(ask(41, 5), (Bytes{0, 0, 0, 0, 0x01}));
        EXPECT_EQ(ask(41, 5), (Bytes{10, 0, 0, 0, 0x09}));
        EXPECT_EQ(ask(41, 5), (Bytes{10, 0, 0, 0, 0x08}));
        EXPECT_EQ(refusal(41, 5), statusNothingMore);
    }
    ask(42, 5);
    EXPECT_EQ(refusal(41, 5), statusNothingMore);
}

TEST_P(SecurityTest, FlagsAreResetByBeingReadEachSetApart)
{
    board.switches().open(2);
    board.switches().close(2);
    board.switches().open(1);
    EXPECT_EQ(ask(64, 5), (Bytes{6, 4}));
    EXPECT_EQ(ask(64, 5), (Bytes{0, 0}));
    EXPECT_EQ(ask(67, 5), (Bytes{6, 4}));
    EXPECT_EQ(ask(67, 5), (Bytes{0, 0}));
}

TEST_P(SecurityTest, AFailedBatteryLosesClockLogAndMemoryWithoutPower)
{
    board.clock().set(1000);
    board.switches().open();
    board.sram().set(0x4000, 0x55);
    board.battery().fail();
    EXPECT_EQ(ask(21, 5), bytesOf32le(1000)) << "as long as there is power nothing is lost";
    pass(100s);
    board.unplug();
    pass(50s);
    board.plug();
    pass(3s);
    board.firmwareRunning();
    EXPECT_EQ(ask(21, 5), bytesOf32le(3));
    EXPECT_EQ(refusal(41, 5), statusNothingMore);
    EXPECT_EQ(board.sram().at(0x4000), 0);
    if (GetParam() == Model::R20)
        return;
    EXPECT_EQ(ask(119, 5), Bytes{1});
    EXPECT_EQ(ask(119, 5), Bytes{0});
    if (GetParam() == Model::R20s)
        return;
    EXPECT_EQ(ask(221, 5), bytesOf32le(1000));
    EXPECT_EQ(ask(220, 5), Bytes{1});
    EXPECT_EQ(ask(220, 5), Bytes{0});
}

TEST_P(SecurityTest, RandomNumbersRepeatWithTheirSettingAndAreGivenOnlyWhileEnabled)
{
    EXPECT_EQ(refusal(68, 5), statusDisabled);
    ask(69, 5, {1, 2, 3, 4});
    const Bytes first = ask(68, 5);
    EXPECT_EQ(first.size(), 2U);
    EXPECT_NE(ask(68, 5), first);
    ask(69, 5, {1, 2, 3, 4});
    EXPECT_EQ(ask(68, 5), first);
    ask(118, 5);
    EXPECT_EQ(refusal(68, 5), statusDisabled);
}

TEST_P(SecurityTest, TheBoardTellsWhoItIs)
{
    const Bytes version = ask(6, 2);
    EXPECT_EQ(std::string(version.begin(), version.end() - 1), std::string("Virtual ") + nameOf(GetParam()) + " 1.0");
    EXPECT_EQ(version.back(), 0);
    EXPECT_FALSE(ask(44, 5).empty());
    ask(65, 5, {1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(ask(63, 5), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(IdentityTest, TheOneWireNumberHasAValidCheckByte)
{
    EXPECT_EQ(oneWireCheck(Bytes{0x02, 0x1C, 0xB8, 0x01, 0x00, 0x00, 0x00}), 0xA2);
    Identity identity(Model::R35);
    identity.setSerialDallas(0x060504030201);
    const std::optional<Reply> reply = identity.answer(Request::GetDallasSerialNumber, {});
    EXPECT_EQ(Bytes(reply->bytes.begin(), reply->bytes.end() - 1), (Bytes{1, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(oneWireCheck(reply->bytes), 0);
}

TEST_P(SecurityTest, TheSPISlaveEchoesAndAnswersSECFrames)
{
    EXPECT_EQ(ask(96, 7, {8, 16, 0, 0x12}), (Bytes{0xFF, 0xFF})) << "the port is off";
    ask(94, 7);
    EXPECT_EQ(ask(96, 7, {12, 24, 0, 0x12, 0x30}), (Bytes{0x12, 0x30, 0}));
    EXPECT_EQ(ask(96, 7, {48, 56, 0, 16, 32, 2, 1, 2, 53}), (Bytes{16, 32, 3, 1, 2, 1, 55}));
    EXPECT_EQ(ask(96, 7, {48, 56, 0, 16, 32, 2, 1, 2, 54}), (Bytes{16, 32, 2, 1, 2, 54, 0})) << "a wrong checksum";
    board.spi().reply({9});
    EXPECT_EQ(ask(96, 7, {8, 16, 0, 0x12}), (Bytes{9, 0}));
    EXPECT_EQ(refusal(96, 7, {12, 8, 0, 1}), statusWrongLength);
    EXPECT_EQ(refusal(96, 7, {161, 8, 0, 1}), statusWrongValue);
    ask(95, 7);
    EXPECT_EQ(ask(96, 7, {8, 8, 0, 0x12}), Bytes{0xFF});
}

TEST_F(BoardTest, DiagnosticDataIsReadBack)
{
    EXPECT_EQ(ask(128, 1, {1, 2}), (Bytes{1, 2}));
    ask(129, 1, {7, 8, 9});
    EXPECT_EQ(ask(128, 1, {1, 2}), (Bytes{7, 8, 9}));
}

}  // namespace
}  // namespace sim
