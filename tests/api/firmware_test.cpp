// Loading a board's firmware, and the preparation that follows it: which EEPROM is found, and its configuration.
#include "tests/support/open_board.h"

#include <fstream>
#include <iterator>

namespace tests::firmware
{

using sim::Exchange;
using sim::Fault;
using sim::Model;

sim::Bytes imageOf(Model model)
{
    const char *const names[] = {"r20.bin", "r20s.bin", "r35.bin"};
    std::ifstream file(std::string(FIRMWARE_IMAGES "/") + names[static_cast<int>(model) - 1], std::ios::binary);
    return sim::Bytes(std::istreambuf_iterator<char>(file), {});
}

struct Download {
    Model model;
    bool highSpeed;
    std::size_t requests;
    std::size_t chunk;
    std::size_t last;
};

constexpr Download downloads[] = {
    {Model::R20, false, 279, 57, 42},  {Model::R20, true, 64, 249, 201}, {Model::R20s, false, 255, 55, 32},
    {Model::R20s, true, 57, 247, 170}, {Model::R35, false, 258, 55, 37}, {Model::R35, true, 58, 247, 93},
};

/// The header of the chunk that starts at this place of the image.
sim::Bytes headerOf(Model model, std::size_t place, std::size_t length)
{
    const auto byte = [](std::size_t value) { return static_cast<unsigned char>(value); };
    if (model == Model::R20)
        return {byte(length), byte(place), byte(place >> 8)};
    return {byte(length), 0, 13, byte(place), byte(place >> 8)};
}

TEST(Firmware, IsLoadedChunkByChunkInOrder)
{
    for (const Download &row : downloads) {
        SCOPED_TRACE(std::string(sim::nameOf(row.model)) + (row.highSpeed ? " high speed" : " full speed"));
        sim::VirtualBoard &board = plug(0, row.model);
        if (row.highSpeed)
            board.highSpeed();
        SorvaneUSB usb;
        ASSERT_TRUE(usb.InitPort(0));
        const auto &seen = board.exchanges();
        ASSERT_GE(seen.size(), row.requests + 3);
        EXPECT_EQ(seen[0], (Exchange{74, 6, {}, 0, {0}}));
        EXPECT_EQ(seen[1].request, 72);
        EXPECT_TRUE(seen[1].pipe == 6 && seen[1].sent.empty());
        const sim::Bytes image = imageOf(row.model);
        std::size_t place = 0;
        for (std::size_t k = 0; k < row.requests; ++k) {
            const std::size_t length = k + 1 == row.requests ? row.last : row.chunk;
            sim::Bytes expected = headerOf(row.model, place, length);
            expected.insert(expected.end(), image.begin() + static_cast<long>(place),
                            image.begin() + static_cast<long>(place + length));
            ASSERT_EQ(seen[2 + k].request, row.model == Model::R20 ? 71 : 117);
            ASSERT_EQ(seen[2 + k].pipe, 6);
            ASSERT_EQ(seen[2 + k].sent, expected) << "chunk " << k;
            place += length;
        }
        EXPECT_EQ(place, image.size());
        EXPECT_EQ(seen[2 + row.requests].request, 73);
        EXPECT_TRUE(board.firmware().running());
    }
}

TEST(Firmware, IsNotLoadedWhereItRuns)
{
    for (Model model : everyModel) {
        OpenBoard open(model, 1);
        EXPECT_EQ(open.usb.Download8051Software(), 1);
        EXPECT_EQ(wire(open.board), "74/6");
    }
}

TEST(Firmware, AnyAnswerButOneMeansThatItDoesNotRun)
{
    for (const sim::Bytes &answer : {sim::Bytes{}, sim::Bytes{2}}) {
        sim::VirtualBoard &board = plug(1, Model::R35);
        board.answerNext(answer);
        SorvaneUSB usb;
        EXPECT_TRUE(usb.InitPort(1));
        EXPECT_EQ(board.exchanges().at(1).request, 72);
        EXPECT_TRUE(board.firmware().running());
    }
}

TEST(Firmware, AFailedDownloadFailsTheOpeningAndTouchesNoEEPROM)
{
    const unsigned char failingRequests[] = {74, 72, 0, 73};
    for (Model model : everyModel) {
        for (unsigned char request : failingRequests) {
            const unsigned char chunk = model == Model::R20 ? 71 : 117;
            const unsigned char failing = request ? request : chunk;
            SCOPED_TRACE(std::string(sim::nameOf(model)) + " request " + std::to_string(failing));
            sim::VirtualBoard &board = plug(14, model);
            board.faults().add(Fault::status(99).on(failing, 6));
            SorvaneUSB usb;
            EXPECT_EQ(errorOf(usb, usb.InitPort(14)), 99);
            EXPECT_EQ(board.exchanges().back().request, failing);
            EXPECT_EQ(sim::openDescriptors(14).size(), 1u) << "the board stays attached";
        }
    }
}

struct Chip {
    const char *name;
    const R20EEPROM *description;
    const char *fields;  // page size, address bytes, low and high byte of the highest address, bus address, spare
    const char *probes;  // addresses, as low and high byte, at which the sample is looked for
};

const Chip chips[] = {
    {"24LC01", &E24LC01, "08 01 7F 00 50 00", "80 00"},
    {"24LC02", &E24LC02, "08 01 FF 00 50 00", "80 00; 00 01"},
    {"24LC04", &E24LC04, "10 01 FF 01 50 00", "80 00; 00 01; 00 02"},
    {"24LC08", &E24LC08, "10 01 FF 03 50 00", "80 00; 00 01; 00 02; 00 04"},
    {"24LC16", &E24LC16, "10 01 FF 07 50 00", "80 00; 00 01; 00 02; 00 04"},
    {"24LC32", &E24LC32, "20 02 FF 0F 51 00", "00 10"},
    {"24LC64", &E24LC64, "20 02 FF 1F 51 00", "00 10; 00 20"},
    {"24LC128", &E24LC128, "40 02 FF 3F 51 00", "00 10; 00 20; 00 40"},
    {"24LC256", &E24LC256, "40 02 FF 7F 51 00", "00 10; 00 20; 00 40; 00 80"},
    {"24LC512", &E24LC512, "80 02 FF FF 51 00", "00 10; 00 20; 00 40; 00 80"},
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
            EXPECT_EQ(describe(found), chip.fields);
            EXPECT_EQ(open.usb.GetLastError(), usbErrorNone) << "the first try leaves no error behind";
            std::vector<std::string> configurations;
            std::string probes;
            readTrace(open.board, configurations, probes);
            EXPECT_EQ(probes, chip.probes);
            EXPECT_EQ(open.board.exchanges().back().sent[0], 100 - 58) << "the rest of a sample of 100 bytes";
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
    EXPECT_EQ(errorOf(open.usb, open.usb.CheckEEPROM(&found)), 70);
    EXPECT_EQ(describe(found), describe(E24LC08));
}

TEST(Preparation, ConfiguresTheEEPROMOfADeviceNumberOnce)
{
    sim::VirtualBoard &board = plug(13, Model::R35).firmwareRunning().eeprom(E24LC64);
    SorvaneUSB usb;
    ASSERT_TRUE(usb.InitPort(13));
    EXPECT_EQ(board.exchanges().back().request, 3);
    EXPECT_EQ(hex(board.exchanges().back().sent.data(), 5), "20 02 1F FF 51");
    board.clearExchanges();
    ASSERT_TRUE(usb.InitPort(13));
    EXPECT_EQ(wire(board), "74/6") << "the second opening finds it configured";
}

TEST(Preparation, FailsWithTheCodeOfTheStepThatFailed)
{
    plug(12, Model::R35).firmwareRunning().faults().add(Fault::status(98).on(5, 2).forever());
    SorvaneUSB usb;
    EXPECT_EQ(errorOf(usb, usb.InitPort(12)), 98);
}

}  // namespace tests::firmware
