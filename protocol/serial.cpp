#include "protocol/families.h"

namespace protocol
{

namespace
{

// What the timers of the ports are loaded with, as a number of two bytes, the low one first.
constexpr Code port0Rates[] = {{0x0098, 1200},  {0x0164, 2400},  {0x01B2, 4800},  {0x01D9, 9600},
                               {0x01EC, 19200}, {0x01F6, 38400}, {0x01FA, 62500}, {}};
constexpr Code port1Rates[] = {{0xCABB, 110},
                               {0xEC78, 300},
                               {0xF63C, 600},
                               {0xFB1F, 1200},
                               {0xFD8F, 2400},
                               {0xFEC8, 4800},
                               {0xFF64, 9600},
                               {0xFF98, 14400},
                               {0xFFB2, 19200},
                               {0xFFD8, 38400},
                               {0xFFE6, 57600},
                               {0xFFE8, 62500},
                               {}};

constexpr Field type = u8("type", 0).upTo(3);
constexpr Field format = u8("format", 1).upTo(3).noted("2, 1 and 3 for a `Format` of 1, 2 and 5; 0 for any other");
constexpr Field option2 = u8("options2to3", 2).upTo(3).noted("bits 2 and 3 of `Options`");
constexpr Field option1 = u8("option1", 3).upTo(1).noted("bit 1 of `Options`");

constexpr Field baudRate(Codes rates)
{
    return u16le("baudRate", 4).standsFor(rates).noted("in bit/s, as what the port's timer is loaded with");
}

constexpr Operation serialRows[] = {
    {97, port0Pipe, onEveryModel, "SetConfig", {type, format, option2, option1, baudRate(port0Rates)}},
    {97, port1Pipe, onEveryModel, "SetConfig", {type, format, option2, option1, baudRate(port1Rates)}},
    {98,
     serialPipes,
     onEveryModel,
     "Send",
     {text("data", 0).noted("words of 9 bits as two bytes, the high one first")},
     {},
     {"Send9BitData"}},
    {99,
     port0Pipe,
     onEveryModel,
     "Receive",
     {u8("messageId", 0).noted("counts the requests of the process")},
     {text("data", 0).noted("as in Send; no byte: that was all")},
     {"Receive9BitData"}},
    {99, port1Pipe, onEveryModel, "Receive", {}, {text("data", 0).noted("as on port 0")}, {"Receive9BitData"}},
    {100, serialPipes, onEveryModel, "GetParityErrors", {}, {u16be("count", 0)}},
    {101,
     serialPipes,
     onEveryModel,
     "SetTimeoutMessage",
     {u8("time", 0).upTo(254).in("ms", 30), u8("length", 1).upTo(60), text("message", 2).countedBy("length")}},
    {102,
     serialPipes,
     onEveryModel,
     "ReceiveByteWithTimestamp",
     {},
     {bytes("batch", 0)
          .noted("pairs of byte and timestamp, with 9 bits triples of high byte, low byte and timestamp; a "
                 "byte alone is a timestamp without data")},
     {"ReceiveByteWithTimestamp9BitData"}},
};

}  // namespace

std::span<const Operation> serialOperations()
{
    return serialRows;
}

}  // namespace protocol
