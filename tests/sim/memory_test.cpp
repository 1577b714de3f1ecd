// Firmware, SRAM and EEPROM.
#include "tests/sim/sim_test.h"

namespace sim
{
namespace
{

class FirmwareTest : public EveryModel
{
public:
    FirmwareTest() { board.firmware().setRunning(false); }

    // A chunk of the image at its place: flat on an R20, page 13 on the others.
    void load(unsigned int address, unsigned int length)
    {
        const bool r20 = GetParam() == Model::R20;
        Bytes chunk = r20 ? Bytes{lowByte(length), lowByte(address), highByte(address)}
                          : Bytes{lowByte(length), 0, 13, lowByte(address), highByte(address)};
        for (unsigned int i = 0; i < length; ++i)
            chunk.push_back(lowByte(address + i));
        ask(r20 ? 71 : 117, 6, chunk);
    }

    void loadAllBut(unsigned int missing)
    {
        const unsigned int length = GetParam() == Model::R20 ? 15888 : GetParam() == Model::R20s ? 14002 : 14172;
        for (unsigned int address = 0; address < length; address += 55) {
            if (address / 55 != missing)
                load(address, std::min(55U, length - address));
        }
    }
};
INSTANTIATE_TEST_SUITE_P(Models, FirmwareTest, testing::ValuesIn(everyModel), nameOfParameter);

constexpr unsigned int none = 1000000;

TEST_P(FirmwareTest, ACompleteDownloadRuns)
{
    ask(72, 6);
    loadAllBut(none);
    EXPECT_EQ(ask(74, 6), Bytes{0});
    ask(73, 6);
    EXPECT_EQ(ask(74, 6), Bytes{1});
    EXPECT_EQ(board.firmware().image()[300], 300 % 256);
    EXPECT_EQ(ask(75, 1).size(), 5U);
}

TEST_P(FirmwareTest, AMissingChunkIsNoticedAndMayFollow)
{
    ask(72, 6);
    loadAllBut(100);
    EXPECT_EQ(refusal(73, 6), statusIncompleteFirmware);
    EXPECT_EQ(ask(74, 6), Bytes{0});
    load(100 * 55, 55);
    ask(73, 6);
    EXPECT_EQ(ask(74, 6), Bytes{1});
}

TEST_P(FirmwareTest, WhatWasWrittenBeforeTheBeginningDoesNotCount)
{
    ask(72, 6);
    loadAllBut(none);
    ask(72, 6);
    EXPECT_EQ(refusal(73, 6), statusIncompleteFirmware);
}

using FlatSRAMTest = FirmwareTest;
INSTANTIATE_TEST_SUITE_P(R20, FlatSRAMTest, testing::Values(Model::R20), nameOfParameter);

TEST_P(FlatSRAMTest, BytesAreKeptApartFromTheFirmware)
{
    ask(71, 6, {3, 0xFD, 0xFF, 1, 2, 3});
    EXPECT_EQ(ask(70, 6, {3, 0xFD, 0xFF}), (Bytes{1, 2, 3}));
    EXPECT_EQ(refusal(71, 6, {4, 0xFD, 0xFF, 1, 2, 3, 4}), statusWrongValue);
    EXPECT_EQ(refusal(71, 6, {4, 0, 0, 1, 2, 3}), statusWrongLength);
    EXPECT_EQ(refusal(70, 6, {63, 0, 0}), statusWrongValue);
    ask(71, 6, {1, 7, 0, 0x77});
    ask(72, 6);
    loadAllBut(none);
    ask(73, 6);
    EXPECT_EQ(ask(70, 6, {1, 7, 0}), Bytes{0x77});
}

class BankedSRAMTest : public EveryModel
{
};
INSTANTIATE_TEST_SUITE_P(Banked, BankedSRAMTest, testing::Values(Model::R20s, Model::R35), nameOfParameter);

TEST_P(BankedSRAMTest, PagesEndWhereTheyEnd)
{
    const unsigned char lastPage = GetParam() == Model::R20s ? 32 : 64;
    ask(117, 6, {2, 0, lastPage, 0xFE, 0x3F, 1, 2});
    EXPECT_EQ(ask(116, 6, {2, 0, lastPage, 0xFE, 0x3F}), (Bytes{1, 2}));
    EXPECT_EQ(refusal(116, 6, {2, 0, lastPage, 0xFF, 0x3F}), statusWrongValue);
    EXPECT_EQ(refusal(116, 6, {1, 0, static_cast<unsigned char>(lastPage + 1), 0, 0}), statusWrongValue);
    EXPECT_EQ(ask(116, 6, {0, 1, 1, 0, 0}).size(), 256U);
    EXPECT_EQ(refusal(116, 6, {1, 1, 1, 0, 0}), statusWrongValue);
}

TEST_P(BankedSRAMTest, TheFirmwareIsProtectedOutsideADownload)
{
    for (const unsigned char page : {13, 14, 15})
        EXPECT_EQ(refusal(117, 6, {1, 0, page, 0, 0, 1}), statusProtected);
    ask(117, 6, {1, 0, 12, 0, 0, 1});
    ask(117, 6, {1, 0, 16, 0, 0, 1});
}

class EEPROMTest : public testing::TestWithParam<EEPROMChip>
{
public:
    EEPROMTest() { board.eeprom(GetParam().description).firmwareRunning(); }

    int configure(const R20EEPROM &chip)
    {
        const Bytes payload{chip.pageSize, chip.addressBytes, highByte(chip.maxAddress), lowByte(chip.maxAddress),
                            chip.busAddress};
        return board.exchange(3, 2, payload.data(), payload.size()).status;
    }

    Answer read(unsigned int address, unsigned char length)
    {
        const Bytes payload{length, lowByte(address), highByte(address)};
        return board.exchange(5, 2, payload.data(), payload.size());
    }

    ManualClock time;
    VirtualBoard board{Model::R20s, time};
};
INSTANTIATE_TEST_SUITE_P(Chips, EEPROMTest, testing::ValuesIn(eepromChips),
                         [](const auto &info) { return std::string("E") + info.param.name; });

TEST_P(EEPROMTest, AddressesWrapAtTheCapacityAndNowhereBefore)
{
    const bool large = GetParam().description.addressBytes == 2;
    EXPECT_EQ(read(0, 50).status, statusNotConfigured);
    configure(large ? E24LC256 : E24LC16);
    const Bytes start = read(0, 50).bytes;
    ASSERT_EQ(start.size(), 50U);
    const unsigned int capacity = GetParam().description.maxAddress + 1U;
    for (unsigned int address = large ? 4096 : 128; address < capacity; address *= 2)
        EXPECT_NE(read(address, 50).bytes, start) << address;
    const bool wraps = capacity < (large ? 65536U : 2048U);
    EXPECT_EQ(read(wraps ? capacity : 0, 50).bytes, start);
}

TEST_P(EEPROMTest, AWrongDescriptionIsTakenButNothingAnswers)
{
    const bool large = GetParam().description.addressBytes == 2;
    EXPECT_EQ(configure(large ? E24LC16 : E24LC256), 0);
    EXPECT_EQ(read(0, 50).status, statusNoAcknowledge);
}

TEST_P(EEPROMTest, AWrittenChunkIsReadBackAcrossPages)
{
    configure(GetParam().description);
    Bytes payload{57, 20, 0};
    for (unsigned char i = 0; i < 57; ++i)
        payload.push_back(static_cast<unsigned char>(i ^ 0x5A));
    EXPECT_EQ(board.exchange(4, 2, payload.data(), payload.size()).status, 0);
    EXPECT_EQ(read(20, 57).bytes, Bytes(payload.begin() + 3, payload.end()));
    EXPECT_EQ(read(0, 59).status, statusWrongValue);
    payload.push_back(0);
    EXPECT_EQ(board.exchange(4, 2, payload.data(), payload.size()).status, statusWrongLength);
}

TEST_P(EEPROMTest, ABlankChipIsAlikeEverywhere)
{
    board.eeprom().blank();
    configure(GetParam().description);
    EXPECT_EQ(read(64, 50).bytes, Bytes(50, 0xFF));
}

}  // namespace
}  // namespace sim
