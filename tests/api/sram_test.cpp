// SRAM of every model: bounds, chunks, and the way around the firmware's pages.
#include "tests/support/open_board.h"

namespace tests
{

namespace
{

using sim::Fault;
using sim::Model;

struct Range {
    Model model;
    unsigned long address;
    unsigned long length;
    int error;
};

TEST(SRAM, EndsWhereTheModelSays)
{
    const Range table[] = {
        {Model::R20, 65534, 1, 0},     {Model::R20, 65535, 0, 0},       {Model::R20, 65535, 1, 25},
        {Model::R20, 65536, 0, 25},    {Model::R20, 0, 0xFFFFFFFF, 25}, {Model::R20, ~0UL, 2, 25},
        {Model::R20s, 0x73FF0, 14, 0}, {Model::R20s, 0x73FF0, 15, 8},   {Model::R20s, 0x73FFE, 0, 0},
        {Model::R20s, 0x73FFF, 0, 8},  {Model::R20s, ~0UL, 2, 8},       {Model::R35, 0xF3FFD, 1, 0},
        {Model::R35, 0xF3FFE, 1, 8},   {Model::R35, 0xF3FFF, 0, 8},     {Model::R35, 1, ~0UL, 8},
    };
    unsigned char data[16] = {};
    for (const Range &row : table) {
        SCOPED_TRACE(std::string(sim::nameOf(row.model)) + " " + std::to_string(row.address) + ", " +
                     std::to_string(row.length));
        OpenBoard open(row.model);
        for (bool write : {false, true}) {
            open.board.clearExchanges();
            const int result = write ? open.usb.WriteLargeSRAM(row.address, data, row.length)
                                     : open.usb.ReadLargeSRAM(row.address, data, row.length);
            EXPECT_EQ(result, row.error ? 0 : 1);
            EXPECT_EQ(wire(open.board).empty(), row.error != 0 || row.length == 0);
            if (row.error) {
                EXPECT_EQ(open.usb.GetLastError(), row.error);
                EXPECT_EQ(open.usb.ReadLargeSRAM(row.address, nullptr, row.length), 0);
                EXPECT_EQ(open.usb.GetLastError(), row.error) << "the range comes before the pointer";
            }
        }
        EXPECT_EQ(open.usb.ReadSRAM(0, nullptr, 0), 0);
        EXPECT_EQ(open.usb.GetLastError(), usbErrorNullPointer);
        EXPECT_EQ(open.usb.WriteSRAM(0, nullptr, 0), 0);
        EXPECT_EQ(open.usb.GetLastError(), usbErrorNullPointer);
    }
}

#if __SIZEOF_LONG__ == 8
TEST(SRAM, ALengthOfMoreThan32BitsIsOutOfRange)
{
    unsigned char data[1] = {};
    for (Model model : everyModel) {
        OpenBoard open(model);
        EXPECT_EQ(open.usb.WriteLargeSRAM(0, data, 0x100000001), 0);
        EXPECT_EQ(open.usb.GetLastError(), model == Model::R20 ? usbErrorNotSupported : usbErrorParameter);
        EXPECT_EQ(wire(open.board), "");
    }
}
#endif

struct Transfer {
    Model model;
    bool highSpeed;
    bool write;
    unsigned long address;
    unsigned long length;
    const char *chunks;  // headers of the requests
};

const Transfer transfers[] = {
    {Model::R20, false, true, 0x1234, 130, "71/6 39 34 12; 71/6 39 6D 12; 71/6 10 A6 12"},
    {Model::R20, true, true, 0x1234, 130, "71/6 82 34 12"},
    {Model::R20, true, true, 0, 250, "71/6 F9 00 00; 71/6 01 F9 00"},
    {Model::R20, true, false, 0x10F0, 60, "70/6 3A F0 10; 70/6 02 2A 11"},
    {Model::R20s, false, true, 0, 56, "117/6 37 00 01 00 00; 117/6 01 00 01 37 00"},
    {Model::R20s, true, true, 0, 248, "117/6 F7 00 01 00 00; 117/6 01 00 01 F7 00"},
    {Model::R20s, false, true, 0x2FFF0, 32, "117/6 10 00 0C F0 3F; 117/6 10 00 10 00 00"},
    {Model::R20s, false, false, 0x2FFF0, 32, "116/6 10 00 0C F0 3F; 116/6 10 00 10 00 00"},
    {Model::R20s, true, false, 0x3F00, 300, "116/6 FC 00 01 00 3F; 116/6 04 00 01 FC 3F; 116/6 2C 00 02 00 00"},
    {Model::R20s, false, false, 0x73FFD, 1, "116/6 01 00 20 FD 3F"},
    {Model::R35, false, false, 0, 61, "116/6 3C 00 01 00 00; 116/6 01 00 01 3C 00"},
    {Model::R35, false, true, 0xF3FFD, 1, "117/6 01 00 40 FD 3F"},
};

TEST(SRAM, TravelsInChunksThatNeverCrossAPage)
{
    unsigned char data[300] = {};
    for (const Transfer &row : transfers) {
        SCOPED_TRACE(row.chunks);
        OpenBoard open(row.model, 0, row.highSpeed);
        EXPECT_TRUE(row.write ? open.usb.WriteLargeSRAM(row.address, data, row.length)
                              : open.usb.ReadLargeSRAM(row.address, data, row.length));
        std::string seen;
        const std::size_t header = row.model == Model::R20 ? 3 : 5;
        for (const sim::Exchange &exchange : open.board.exchanges()) {
            seen += (seen.empty() ? "" : "; ") + std::to_string(exchange.request) + "/" +
                    std::to_string(exchange.pipe) + " " + hex(exchange.sent.data(), header);
            EXPECT_EQ(exchange.sent.size(), header + (row.write ? exchange.sent[0] : 0u));
        }
        EXPECT_EQ(seen, row.chunks);
    }
}

TEST(SRAM, GivesBackWhatWasWritten)
{
    for (Model model : everyModel) {
        for (bool high : {false, true}) {
            OpenBoard open(model, 0, high);
            unsigned char written[600], read[601] = {};
            for (unsigned int k = 0; k < sizeof written; ++k)
                written[k] = static_cast<unsigned char>(k * 7 + (k >> 8));
            const unsigned long address = model == Model::R20 ? 0x3F80 : 0x2FF80;
            EXPECT_TRUE(open.usb.WriteLargeSRAM(address, written, sizeof written));
            EXPECT_TRUE(open.usb.ReadLargeSRAM(address, read, sizeof written));
            EXPECT_EQ(hex(read, sizeof written), hex(written, sizeof written));
            EXPECT_EQ(read[600], 0);
            EXPECT_TRUE(open.usb.WriteSRAM(0xFFF0, written, 5));
            EXPECT_TRUE(open.usb.ReadSRAM(0xFFF0, read, 5));
            EXPECT_EQ(hex(read, 5), hex(written, 5));
        }
    }
}

TEST(SRAM, ReadsWhatComesAndNoByteBehindTheBuffer)
{
    for (Model model : everyModel) {
        OpenBoard open(model);
        unsigned char data[11] = {};
        open.board.answerNext({1, 2});
        open.board.answerNext(sim::Bytes(60, 3));
        EXPECT_TRUE(open.usb.ReadLargeSRAM(0, data, 10));
        EXPECT_EQ(open.board.exchanges().size(), 2u);
        EXPECT_EQ(hex(data, 11), "01 02 03 03 03 03 03 03 03 03 00");
        open.board.clearExchanges();
        open.board.faults().add(Fault::emptyAnswer().forever());
        EXPECT_EQ(open.usb.ReadLargeSRAM(0, data, 10), 0);
        EXPECT_EQ(open.usb.GetLastError(), usbErrorTransfer);
        EXPECT_EQ(open.board.exchanges().size(), 1u);
    }
}

TEST(SRAM, StopsAtTheFirstFailedChunk)
{
    unsigned char data[600] = {};
    for (Model model : everyModel) {
        OpenBoard open(model);
        open.board.faults().add(Fault::status(70).skip(1));
        EXPECT_EQ(open.usb.WriteLargeSRAM(0, data, sizeof data), 0);
        EXPECT_EQ(open.board.exchanges().size(), 2u);
        open.board.faults().add(Fault::status(70).skip(1));
        EXPECT_EQ(open.usb.ReadLargeSRAM(0, data, sizeof data), 0);
        EXPECT_EQ(open.board.exchanges().size(), 4u);
    }
}

}  // namespace

}  // namespace tests
