// The EEPROM: which chip is found, what may be read and written, and in which chunks.
#include "tests/support/open_board.h"

namespace tests
{

namespace
{

using sim::Fault;
using sim::Model;

struct Chip {
    const char *name;
    const R20EEPROM *description;
    const char *probes;  // addresses, as low and high byte, at which the sample is looked for
};

const Chip chips[] = {
    {"24LC01", &E24LC01, "80 00"},
    {"24LC02", &E24LC02, "80 00; 00 01"},
    {"24LC04", &E24LC04, "80 00; 00 01; 00 02"},
    {"24LC08", &E24LC08, "80 00; 00 01; 00 02; 00 04"},
    {"24LC16", &E24LC16, "80 00; 00 01; 00 02; 00 04"},
    {"24LC32", &E24LC32, "00 10"},
    {"24LC64", &E24LC64, "00 10; 00 20"},
    {"24LC128", &E24LC128, "00 10; 00 20; 00 40"},
    {"24LC256", &E24LC256, "00 10; 00 20; 00 40; 00 80"},
    {"24LC512", &E24LC512, "00 10; 00 20; 00 40; 00 80"},
};

std::string describe(const R20EEPROM &chip)
{
    return hex(reinterpret_cast<const unsigned char *>(&chip), sizeof chip);
}

/// The configurations, and the addresses of those first chunks (of 58 bytes) that read elsewhere than at 0.
void readTrace(const sim::VirtualBoard &board, std::vector<std::string> &configurations, std::string &probes)
{
    for (const sim::Exchange &exchange : board.exchanges()) {
        if (exchange.request == 3)
            configurations.push_back(hex(exchange.sent.data(), exchange.sent.size()));
        const bool firstChunk = exchange.request == 5 && exchange.sent[0] == 58;
        if (firstChunk && (exchange.sent[1] != 0 || exchange.sent[2] != 0))
            probes += (probes.empty() ? "" : "; ") + hex(exchange.sent.data() + 1, 2);
    }
}

TEST(CheckEEPROM, FindsEveryChipOnEveryModel)
{
    for (Model model : everyModel) {
        for (const Chip &chip : chips) {
            SCOPED_TRACE(std::string(sim::nameOf(model)) + " with a " + chip.name);
            OpenBoard open(model);
            open.board.eeprom(*chip.description);
            R20EEPROM found = {};
            EXPECT_EQ(open.usb.CheckEEPROM(&found), 1);
            EXPECT_EQ(describe(found), describe(*chip.description));
            EXPECT_EQ(open.usb.GetLastError(), usbErrorNone) << "the first try leaves no error behind";
            std::vector<std::string> configurations;
            std::string probes;
            readTrace(open.board, configurations, probes);
            EXPECT_EQ(probes, chip.probes);
            EXPECT_EQ(configurations.front(), "40 02 7F FF 51");
            EXPECT_EQ(configurations.size(), chip.description->addressBytes == 1 ? 2u : 1u);
            EXPECT_EQ(configurations.back(), chip.description->addressBytes == 1 ? "10 01 07 FF 50" : "40 02 7F FF 51");
        }
    }
}

TEST(CheckEEPROM, TakesABlankChipForTheSmallestOfItsFamily)
{
    for (const Chip &chip : chips) {
        OpenBoard open(Model::R20s);
        open.board.eeprom(*chip.description).eeprom().blank();
        R20EEPROM found = {};
        EXPECT_EQ(open.usb.CheckEEPROM(&found), 1);
        EXPECT_EQ(describe(found), describe(chip.description->addressBytes == 1 ? E24LC01 : E24LC32));
    }
}

TEST(CheckEEPROM, FailsWhereNoChipAnswers)
{
    OpenBoard open(Model::R35);
    open.board.faults().add(Fault::status(70).on(5, 2).forever());
    R20EEPROM found = E24LC08;
    EXPECT_EQ(open.usb.CheckEEPROM(&found), 0);
    EXPECT_EQ(open.usb.GetLastError(), 70);
    EXPECT_EQ(describe(found), describe(E24LC08));
}

class EEPROM : public testing::Test
{
protected:
    EEPROM() : open(Model::R35)
    {
        open.board.eeprom(E24LC256);
        EXPECT_TRUE(open.usb.ConfigureEEPROM(&E24LC256));
        open.board.clearExchanges();
    }
    OpenBoard open;
    unsigned char data[400] = {};
};

TEST_F(EEPROM, KeepsItsFirstEightBytesAndItsLastToItself)
{
    const struct {
        unsigned short address;
        unsigned int length;
        int error;
    } table[] = {
        {7, 1, 8},     {0, 0, 8},     {8, 1, 0},     {8, 0, 0},          {32667, 100, 0},      {32668, 100, 8},
        {32767, 0, 0}, {32768, 0, 8}, {32767, 1, 8}, {8, 0xFFFFFFFF, 8}, {100, 0xFFFFFF9C, 8},
    };
    for (const auto &row : table) {
        SCOPED_TRACE(std::to_string(row.address) + ", " + std::to_string(row.length));
        for (bool write : {false, true}) {
            open.board.clearExchanges();
            const int result = write ? open.usb.WriteEEPROM(row.address, data, row.length)
                                     : open.usb.ReadEEPROM(row.address, data, row.length);
            EXPECT_EQ(result, row.error ? 0 : 1);
            EXPECT_EQ(wire(open.board).empty(), row.error != 0 || row.length == 0);
            if (row.error) {
                EXPECT_EQ(open.usb.GetLastError(), row.error);
            }
        }
    }
    EXPECT_EQ(open.usb.ReadEEPROM(7, nullptr, 1), 0);
    EXPECT_EQ(open.usb.GetLastError(), usbErrorParameter) << "the range comes before the pointer";
    EXPECT_EQ(open.usb.WriteEEPROM(8, nullptr, 0), 0);
    EXPECT_EQ(open.usb.GetLastError(), usbErrorNullPointer);
}

TEST_F(EEPROM, IsWrittenAndReadInChunks)
{
    for (unsigned int k = 0; k < 130; ++k)
        data[k] = static_cast<unsigned char>(k + 1);
    EXPECT_TRUE(open.usb.WriteEEPROM(100, data, 130));
    const auto &seen = open.board.exchanges();
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(hex(seen[0].sent.data(), 5), "39 64 00 01 02");
    EXPECT_EQ(hex(seen[1].sent.data(), 5), "39 9D 00 3A 3B");
    EXPECT_EQ(hex(seen[2].sent.data(), 5), "10 D6 00 73 74");
    open.board.clearExchanges();
    unsigned char back[131] = {};
    EXPECT_TRUE(open.usb.ReadEEPROM(100, back, 130));
    EXPECT_EQ(wire(open.board), "5/2 3A 64 00; 5/2 3A 9E 00; 5/2 0E D8 00");
    EXPECT_EQ(hex(back, 131), hex(data, 131));
}

TEST_F(EEPROM, ReadsOnWhereAShortAnswerEnded)
{
    open.board.answerNext({1, 2, 3});
    open.board.answerNext(sim::Bytes(58, 4));
    EXPECT_TRUE(open.usb.ReadEEPROM(100, data, 70));
    EXPECT_EQ(wire(open.board), "5/2 3A 64 00; 5/2 3A 67 00; 5/2 09 A1 00");
    EXPECT_EQ(hex(data, 5), "01 02 03 04 04");
}

TEST_F(EEPROM, WritesNoByteOfALongAnswerBehindTheBuffer)
{
    for (std::size_t length : {11u, 200u, 256u}) {
        open.board.answerNext(sim::Bytes(length, 0x77));
        std::fill(std::begin(data), std::end(data), static_cast<unsigned char>(0));
        EXPECT_TRUE(open.usb.ReadEEPROM(100, data, 10));
        EXPECT_EQ(data[9], 0x77);
        EXPECT_EQ(data[10], 0);
    }
    open.board.clearExchanges();
    open.board.answerNext(sim::Bytes(70, 0x77));
    EXPECT_TRUE(open.usb.ReadEEPROM(100, data, 90));
    EXPECT_EQ(wire(open.board), "5/2 3A 64 00; 5/2 14 AA 00") << "what came too much counts as read";
}

TEST_F(EEPROM, GivesUpOnAnswersWithoutData)
{
    open.board.faults().add(Fault::emptyAnswer().on(5, 2).forever());
    EXPECT_EQ(open.usb.ReadEEPROM(100, data, 10), 0);
    EXPECT_EQ(open.usb.GetLastError(), usbErrorTransfer);
    EXPECT_EQ(open.board.exchanges().size(), 1u);
}

TEST_F(EEPROM, StopsAtTheFirstFailedChunk)
{
    open.board.faults().add(Fault::status(70).skip(1));
    EXPECT_EQ(open.usb.WriteEEPROM(100, data, 170), 0);
    EXPECT_EQ(open.usb.GetLastError(), 70);
    EXPECT_EQ(open.board.exchanges().size(), 2u);
}

TEST_F(EEPROM, IsBoundedByTheTypeThatWasLastConfigured)
{
    open.board.faults().add(Fault::status(70));
    EXPECT_EQ(open.usb.ConfigureEEPROM(&E24LC01), 0);
    EXPECT_EQ(open.usb.ReadEEPROM(120, data, 8), 0) << "also where the board did not take the configuration";
    EXPECT_EQ(open.usb.GetLastError(), usbErrorParameter);
    R20EEPROM found;
    EXPECT_TRUE(open.usb.CheckEEPROM(&found));
    EXPECT_TRUE(open.usb.ReadEEPROM(32667, data, 100)) << "detection leaves the type that it tried last";
}

}  // namespace

}  // namespace tests
