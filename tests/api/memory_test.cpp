// SRAM and EEPROM: bounds, chunks, and answers that are shorter or longer than asked for.
#include "tests/support/open_board.h"

#include <functional>

namespace tests::memory
{

using sim::Fault;
using sim::Model;

enum class Memory { SRAM, EEPROM };

/// One way to read and to write both memories; the EEPROM is a configured 24LC256.
struct MemoryBoard : OpenBoard {
    MemoryBoard(Model model, Memory memory, bool highSpeed = false) : OpenBoard(model, 0, highSpeed), memory(memory)
    {
        board.eeprom(E24LC256);
        EXPECT_TRUE(usb.ConfigureEEPROM(&E24LC256));
        board.clearExchanges();
    }
    int read(unsigned long address, unsigned char *data, unsigned long length)
    {
        return memory == Memory::SRAM
                   ? usb.ReadLargeSRAM(address, data, length)
                   : usb.ReadEEPROM(static_cast<unsigned short>(address), data, static_cast<unsigned int>(length));
    }
    int write(unsigned long address, unsigned char *data, unsigned long length)
    {
        return memory == Memory::SRAM
                   ? usb.WriteLargeSRAM(address, data, length)
                   : usb.WriteEEPROM(static_cast<unsigned short>(address), data, static_cast<unsigned int>(length));
    }
    /// The requests without the data.
    std::string headers() const
    {
        const std::size_t size = memory == Memory::EEPROM || board.model() == Model::R20 ? 3 : 5;
        std::string text;
        for (const sim::Exchange &exchange : board.exchanges())
            text += (text.empty() ? "" : "; ") + std::to_string(exchange.request) + "/" +
                    std::to_string(exchange.pipe) + " " + hex(exchange.sent.data(), size);
        return text;
    }
    std::string name() const
    {
        return std::string(nameOf(board.model())) + (memory == Memory::SRAM ? " SRAM" : " EEPROM");
    }

    Memory memory;
};

void onEveryMemory(const std::function<void(MemoryBoard &)> &test)
{
    for (const Model model : everyModel) {
        for (const Memory memory : {Memory::SRAM, Memory::EEPROM}) {
            for (const bool highSpeed : {false, true}) {
                MemoryBoard on(model, memory, highSpeed);
                SCOPED_TRACE(on.name());
                test(on);
            }
        }
    }
}

TEST(Memories, EndWhereTheModelOrTheChipSays)
{
    constexpr Memory sram = Memory::SRAM, eeprom = Memory::EEPROM;
    constexpr unsigned long oneIn32Bits = (~0UL >> 1) + 2;  // where a long has 64
    // Its first eight bytes and its last the EEPROM keeps to itself.
    const struct {
        Memory memory;
        Model model;
        unsigned long address, length;
        int error;
    } table[] = {{sram, Model::R20, 65534, 1, 0},         {sram, Model::R20, 65535, 0, 0},
                 {sram, Model::R20, 65535, 1, 25},        {sram, Model::R20, 65536, 0, 25},
                 {sram, Model::R20, 0, 0xFFFFFFFF, 25},   {sram, Model::R20, ~0UL, 2, 25},
                 {sram, Model::R20s, 0x73FF0, 14, 0},     {sram, Model::R20s, 0x73FF0, 15, 8},
                 {sram, Model::R20s, 0x73FFE, 0, 0},      {sram, Model::R20s, 0x73FFF, 0, 8},
                 {sram, Model::R20s, ~0UL, 2, 8},         {sram, Model::R35, 0xF3FFD, 1, 0},
                 {sram, Model::R35, 0xF3FFE, 1, 8},       {sram, Model::R35, 0xF3FFF, 0, 8},
                 {sram, Model::R35, 1, ~0UL, 8},          {sram, Model::R20, 0, oneIn32Bits, 25},
                 {sram, Model::R20s, 0, oneIn32Bits, 8},  {sram, Model::R35, 0, oneIn32Bits, 8},
                 {eeprom, Model::R35, 7, 1, 8},           {eeprom, Model::R35, 0, 0, 8},
                 {eeprom, Model::R35, 8, 1, 0},           {eeprom, Model::R35, 8, 0, 0},
                 {eeprom, Model::R35, 32667, 100, 0},     {eeprom, Model::R35, 32668, 100, 8},
                 {eeprom, Model::R35, 32767, 0, 0},       {eeprom, Model::R35, 32768, 0, 8},
                 {eeprom, Model::R35, 32767, 1, 8},       {eeprom, Model::R35, 8, 0xFFFFFFFF, 8},
                 {eeprom, Model::R35, 100, 0xFFFFFF9C, 8}};
    unsigned char data[100] = {};
    for (const auto &row : table) {
        MemoryBoard on(row.model, row.memory);
        SCOPED_TRACE(on.name() + " " + std::to_string(row.address) + ", " + std::to_string(row.length));
        for (const auto move : {&MemoryBoard::write, &MemoryBoard::read}) {
            on.board.clearExchanges();
            EXPECT_EQ((on.*move)(row.address, data, row.length), row.error ? 0 : 1);
            EXPECT_EQ(wire(on.board).empty(), row.error != 0 || row.length == 0);
            if (row.error) {
                EXPECT_EQ(on.usb.GetLastError(), row.error);
            }
            EXPECT_EQ((on.*move)(row.address, nullptr, row.length), 0);
            EXPECT_EQ(on.usb.GetLastError(), row.error ? row.error : usbErrorNullPointer)
                << "the range comes before the pointer";
        }
        EXPECT_EQ(errorOf(on.usb, on.usb.ReadSRAM(0, nullptr, 0) + on.usb.WriteSRAM(0, nullptr, 0)),
                  usbErrorNullPointer);
    }
}

TEST(Memories, TravelInChunksThatNeverCrossAPage)
{
    constexpr Memory sram = Memory::SRAM, eeprom = Memory::EEPROM;
    const struct {
        Memory memory;
        Model model;
        bool highSpeed, write;
        unsigned long address, length;
        const char *headers;
    } table[] = {
        {sram, Model::R20, false, true, 0x1234, 130, "71/6 39 34 12; 71/6 39 6D 12; 71/6 10 A6 12"},
        {sram, Model::R20, true, true, 0x1234, 130, "71/6 82 34 12"},
        {sram, Model::R20, true, true, 0, 250, "71/6 F9 00 00; 71/6 01 F9 00"},
        {sram, Model::R20, true, false, 0x10F0, 60, "70/6 3A F0 10; 70/6 02 2A 11"},
        {sram, Model::R20s, false, true, 0, 56, "117/6 37 00 01 00 00; 117/6 01 00 01 37 00"},
        {sram, Model::R20s, true, true, 0, 248, "117/6 F7 00 01 00 00; 117/6 01 00 01 F7 00"},
        {sram, Model::R20s, false, true, 0x2FFF0, 32, "117/6 10 00 0C F0 3F; 117/6 10 00 10 00 00"},
        {sram, Model::R20s, false, false, 0x2FFF0, 32, "116/6 10 00 0C F0 3F; 116/6 10 00 10 00 00"},
        {sram, Model::R20s, true, false, 0x3F00, 300,
         "116/6 FC 00 01 00 3F; 116/6 04 00 01 FC 3F; 116/6 2C 00 02 00 00"},
        {sram, Model::R20s, false, false, 0x73FFD, 1, "116/6 01 00 20 FD 3F"},
        {sram, Model::R35, false, false, 0, 61, "116/6 3C 00 01 00 00; 116/6 01 00 01 3C 00"},
        {sram, Model::R35, false, true, 0xF3FFD, 1, "117/6 01 00 40 FD 3F"},
        {eeprom, Model::R35, false, true, 100, 130, "4/2 39 64 00; 4/2 39 9D 00; 4/2 10 D6 00"},
        {eeprom, Model::R35, false, false, 100, 130, "5/2 3A 64 00; 5/2 3A 9E 00; 5/2 0E D8 00"},
    };
    unsigned char data[300] = {};
    for (const auto &row : table) {
        SCOPED_TRACE(row.headers);
        MemoryBoard on(row.model, row.memory, row.highSpeed);
        EXPECT_TRUE(row.write ? on.write(row.address, data, row.length) : on.read(row.address, data, row.length));
        EXPECT_EQ(on.headers(), row.headers);
        const std::size_t header = row.memory == eeprom || row.model == Model::R20 ? 3 : 5;
        for (const sim::Exchange &exchange : on.board.exchanges())
            EXPECT_EQ(exchange.sent.size(), header + (row.write ? exchange.sent[0] : 0u));
    }
}

TEST(Memories, GiveBackWhatWasWritten)
{
    onEveryMemory([](MemoryBoard &on) {
        unsigned char written[600], read[601] = {};
        for (unsigned int k = 0; k < sizeof written; ++k)
            written[k] = static_cast<unsigned char>(k * 7 + (k >> 8));
        const bool banked = on.memory == Memory::SRAM && on.board.model() != Model::R20;
        const unsigned long address = banked ? 0x2FF80 : 0x3F80;
        EXPECT_TRUE(on.write(address, written, sizeof written));
        EXPECT_TRUE(on.read(address, read, sizeof written));
        EXPECT_EQ(hex(read, sizeof written), hex(written, sizeof written));
        EXPECT_EQ(read[600], 0);
        EXPECT_TRUE(on.usb.WriteSRAM(0xFFF0, written, 5));
        EXPECT_TRUE(on.usb.ReadSRAM(0xFFF0, read, 5));
        EXPECT_EQ(hex(read, 5), hex(written, 5));
    });
}

TEST(Memories, ReadWhatComesAndNoByteBehindTheBuffer)
{
    onEveryMemory([](MemoryBoard &on) {
        unsigned char data[11] = {};
        on.board.answerNext({1, 2});
        on.board.answerNext(sim::Bytes(60, 3));
        EXPECT_TRUE(on.read(100, data, 10));
        EXPECT_EQ(on.board.exchanges().size(), 2u);
        EXPECT_EQ(hex(data, 11), "01 02 03 03 03 03 03 03 03 03 00");
        for (const std::size_t length : {std::size_t(11), sim::largestAnswer(on.board.model())}) {
            on.board.answerNext(sim::Bytes(length, 0x77));
            EXPECT_TRUE(on.read(100, data, 10));
            EXPECT_EQ(data[9], 0x77);
            EXPECT_EQ(data[10], 0) << length;
        }
        on.board.clearExchanges();
        on.board.faults().add(Fault::emptyAnswer().forever());
        EXPECT_EQ(errorOf(on.usb, on.read(100, data, 10)), usbErrorTransfer) << "it gives up on answers without data";
        EXPECT_EQ(on.board.exchanges().size(), 1u);
    });
}

TEST(Memories, ReadOnWhereAnAnswerOfAnotherLengthEnded)
{
    unsigned char data[400] = {};
    MemoryBoard on(Model::R35, Memory::EEPROM);
    on.board.answerNext({1, 2, 3});
    on.board.answerNext(sim::Bytes(58, 4));
    EXPECT_TRUE(on.read(100, data, 70));
    EXPECT_EQ(on.headers(), "5/2 3A 64 00; 5/2 3A 67 00; 5/2 09 A1 00");
    EXPECT_EQ(hex(data, 5), "01 02 03 04 04");
    on.board.clearExchanges();
    on.board.answerNext(sim::Bytes(70, 0x77));
    EXPECT_TRUE(on.read(100, data, 90));
    EXPECT_EQ(on.headers(), "5/2 3A 64 00; 5/2 14 AA 00") << "what came too much counts as read";
}

TEST(Memories, TheEEPROMIsBoundedByTheTypeThatWasLastConfigured)
{
    MemoryBoard on(Model::R35, Memory::EEPROM);
    unsigned char data[100] = {};
    on.board.faults().add(Fault::status(70));
    EXPECT_EQ(on.usb.ConfigureEEPROM(&E24LC01), 0);
    EXPECT_EQ(errorOf(on.usb, on.read(120, data, 8)), usbErrorParameter)
        << "also where the board did not take the configuration";
    R20EEPROM found;
    EXPECT_TRUE(on.usb.CheckEEPROM(&found));
    EXPECT_TRUE(on.read(32667, data, 100)) << "detection leaves the type that it tried last";
}

}  // namespace tests::memory
