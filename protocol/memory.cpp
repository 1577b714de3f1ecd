#include "protocol/families.h"

namespace protocol
{

namespace
{

constexpr Field chunkLength = u8("length", 0);
constexpr Field address = u16le("address", 1);
constexpr Field chunk = bytes("data", 3).countedBy("length");

constexpr Field bankedLength = u16le("length", 0);
constexpr Field page = u8("page", 2).from(1, 64).noted(
    "the caller's address + 16384 in pages of 16384 bytes, and 3 more above page 12; the firmware goes to page 13");
constexpr Field offset = u16le("offset", 3).upTo(16383).noted("within the page");
constexpr Field bankedChunk = bytes("data", 5).countedBy("length");

constexpr Field read = bytes("data", 0);

constexpr Operation memoryRows[] = {
    {3,
     eepromPipe,
     onEveryModel,
     "ConfigureEEPROM",
     {u8("pageSize", 0), u8("addressBytes", 1), u16be("maxAddress", 2), u8("busAddress", 4)},
     {},
     {"CheckEEPROM"}},
    {4, eepromPipe, onEveryModel, "WriteEEPROM", {chunkLength.from(1, 57), address, chunk}},
    {5, eepromPipe, onEveryModel, "ReadEEPROM", {chunkLength.from(1, 58), address}, {read}, {"CheckEEPROM"}},
    {70, memoryPipe, onR20, "ReadSRAM", {chunkLength.from(1, 58), address}, {read}, {"ReadLargeSRAM"}},
    {71,
     memoryPipe,
     onR20,
     "WriteSRAM",
     {chunkLength.from(1, 249), address, chunk},
     {},
     {"WriteLargeSRAM", "Download8051Software"}},
    {116, memoryPipe, notOnR20, "ReadSRAM", {bankedLength.from(1, 252), page, offset}, {read}, {"ReadLargeSRAM"}},
    {117,
     memoryPipe,
     notOnR20,
     "WriteSRAM",
     {bankedLength.from(1, 247), page, offset, bankedChunk},
     {},
     {"WriteLargeSRAM", "Download8051Software"}},
};

constexpr Operation firmwareRows[] = {
    {72, memoryPipe, onEveryModel, "BeginFirmware", {}, {}, {"Download8051Software"}},
    {73, memoryPipe, onEveryModel, "EndFirmware", {}, {}, {"Download8051Software"}},
    {74,
     memoryPipe,
     onEveryModel,
     "FirmwareRuns",
     {},
     {u8("runs", 0).noted("1: the firmware runs")},
     {"Download8051Software"}},
};

constexpr Field sendBits = u8("sendBits", 0).from(1, 160);

constexpr Operation spiRows[] = {
    {94, spiPipe, onEveryModel, "EnableSPI"},
    {95, spiPipe, onEveryModel, "DisableSPI"},
    {96,
     spiPipe,
     onEveryModel,
     "SendSPI",
     {sendBits, u8("receiveBits", 1).upTo(160), u8("spiOption", 2),
      bytes("txData", 3)
          .countedBy("sendBits", Extent::BitsCounted)
          .noted("from SendSEC: two header bytes, the number of data bytes, these, and the sum of all modulo 256")},
     {bytes("rxData", 0)},
     {"SendSEC"}},
};

}  // namespace

std::span<const Operation> memoryOperations()
{
    return memoryRows;
}

std::span<const Operation> firmwareOperations()
{
    return firmwareRows;
}

std::span<const Operation> spiOperations()
{
    return spiRows;
}

}  // namespace protocol
