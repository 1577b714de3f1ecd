// Inputs and outputs at their bits, and the firmware.
#include "tests/sim/sim_test.h"

namespace sim::parts_test
{

using IOTest = EveryModel;
INSTANTIATE_TEST_SUITE_P(Models, IOTest, testing::ValuesIn(everyModel), nameOfParameter);

TEST_P(IOTest, InputsStandAtTheirBits)
{
    board.boardNumber(5);
    EXPECT_EQ(ask(81, 1), (Bytes{0, 0, 0, 0, 0})) << "changed since last asked";
    for (const unsigned int input : {0U, 15U, 32U})
        board.inputs().set(input, true);
    EXPECT_EQ(ask(75, 1), (Bytes{0x01, 0x80, 0, 0x05, 0x01}));
    EXPECT_EQ(ask(82, 1), (Bytes{0x01, 0x80, 0, 0x05, 0x01}));
    EXPECT_EQ(ask(81, 1), (Bytes{0x01, 0x80, 0, 0, 0x01}));
    EXPECT_EQ(ask(81, 1), (Bytes{0, 0, 0, 0, 0}));
    board.inputs().set(15, false);
    EXPECT_EQ(ask(81, 1), (Bytes{0, 0x80, 0, 0, 0}));
}

TEST_P(IOTest, MultiplexedInputsComeWhileTheyAreScanned)
{
    board.inputs().setMultiplexed(1, 0, 0x44);
    board.inputs().setMultiplexed(3, 2, 0xCC);
    EXPECT_EQ(ask(115, 1), Bytes(13));
    ask(114, 1, {1});
    EXPECT_EQ(ask(115, 1), (Bytes{1, 0, 0, 0, 0x44, 0, 0, 0, 0, 0, 0, 0, 0xCC}));
}

TEST_P(IOTest, OnAndOffAtOnceEndsOffAndTwoBitsNameNoOutput)
{
    ask(77, 1, {0x03, 0, 0, 0, 0xFF, 0x02, 0, 0, 0, 0});
    EXPECT_EQ(board.state().outputsLit, (Pattern{0x01, 0, 0, 0, 0x3F}));
    ask(84, 1, {0x01, 0x20, 0, 0, 0xFF});
    EXPECT_EQ(board.state().outputsOffPeriod, (Pattern{0x01, 0x20, 0, 0, 0xFF}));
}

class FirmwareTest : public EveryModel
{
public:
    FirmwareTest() { board.firmware().setRunning(false); }

    // A chunk of the image at its place: flat on an R20, page 13 on the others.
    void load(unsigned int chunk)
    {
        const unsigned int address = chunk * 55;
        const auto length = static_cast<unsigned int>(std::min<std::size_t>(55, firmwareLength(GetParam()) - address));
        const bool r20 = GetParam() == Model::R20;
        Bytes payload = r20 ? Bytes{lowByte(length), lowByte(address), highByte(address)}
                            : Bytes{lowByte(length), 0, 13, lowByte(address), highByte(address)};
        for (unsigned int i = 0; i < length; ++i)
            payload.push_back(lowByte(address + i));
        ask(r20 ? 71 : 117, 6, payload);
    }

    void loadAllBut(unsigned int missing)
    {
        for (unsigned int chunk = 0; chunk * 55 < firmwareLength(GetParam()); ++chunk) {
            if (chunk != missing)
                load(chunk);
        }
    }
};
INSTANTIATE_TEST_SUITE_P(Models, FirmwareTest, testing::ValuesIn(everyModel), nameOfParameter);

TEST_P(FirmwareTest, RunsOnlyWhenAllOfItCameAfterTheBeginning)
{
    if (GetParam() == Model::R20)
        ask(71, 6, {1, 7, 0, 0x77});  // outside a download it goes to the SRAM
    ask(72, 6);
    load(100);
    ask(72, 6);
    loadAllBut(100);
    EXPECT_EQ(refusal(73, 6), statusIncompleteFirmware);
    EXPECT_EQ(ask(74, 6), Bytes{0});
    load(100);
    ask(73, 6);
    EXPECT_EQ(ask(74, 6), Bytes{1});
    EXPECT_EQ(board.firmware().image()[300], 300 % 256);
    EXPECT_EQ(ask(75, 1).size(), 5U);
    if (GetParam() == Model::R20) {
        EXPECT_EQ(ask(70, 6, {1, 7, 0}), Bytes{0x77}) << "the firmware lies elsewhere";
    }
}

}  // namespace sim::parts_test
