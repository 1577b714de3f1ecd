// One field of a payload or an answer: its name, where it stands and how its bytes are read.
//
//     u16be("coinCount", 4)                      two bytes from byte 4 on, the high one first
//     u8("level", 0).upTo(10)                    what is sent lies between 0 and 10
//     text("message", 2).countedBy("length")     as many bytes as the field "length" before it says
//     u8("first", 0).each(3, 6)                  three of them, 6 bytes from one to the next
#ifndef SORVANE_PROTOCOL_FIELD_H
#define SORVANE_PROTOCOL_FIELD_H

#include <cstdint>

namespace protocol
{

enum class Kind : unsigned char {
    Number,   ///< one number
    Numbers,  ///< as many numbers as the field has elements
    Bits,     ///< the numbers of the bits that are set: bit n is bit n % 8 of byte n / 8
    Bytes,    ///< a byte string
    Text      ///< a byte string that may be text, such as what travels on a serial line
};

enum class ByteOrder : unsigned char { LowFirst, HighFirst };

enum class Extent : unsigned char {
    Fixed,        ///< size bytes
    Counted,      ///< as many bytes as the field of the name `counter` says
    BitsCounted,  ///< the same, and the counter counts bits: what they need, in whole bytes
    Rest          ///< all that follows
};

/// What a wire value stands for, where that is no multiple of it.
struct Code {
    std::uint32_t wire;
    std::uint32_t meaning;
};

/// A row each and a row with `wire` 0 and `meaning` 0 at the end.
using Codes = const Code *;

struct Field {
    const char *name = "";
    Kind kind = Kind::Number;
    unsigned char place = 0;  ///< the first byte; of no meaning where the field follows another
    bool follows = false;     ///< it stands behind the field before it, whose length varies
    Extent extent = Extent::Fixed;
    unsigned char size = 1;  ///< bytes of one element
    ByteOrder order = ByteOrder::LowFirst;
    unsigned char times = 1;   ///< elements
    unsigned char stride = 0;  ///< bytes from one element to the next
    const char *counter = nullptr;
    std::uint32_t least = 0;  ///< what a caller of the library sends, or a board answers; not held against the bytes
    std::uint32_t most = 0;
    std::uint32_t scale = 1;  ///< what is told is the number times this
    const char *unit = "";    ///< of what is told; empty: the firmware's own
    Codes codes = nullptr;
    const char *note = "";

    constexpr Field from(std::uint32_t newLeast, std::uint32_t newMost) const
    {
        Field field = *this;
        field.least = newLeast;
        field.most = newMost;
        return field;
    }
    constexpr Field upTo(std::uint32_t newMost) const { return from(least, newMost); }
    constexpr Field each(unsigned char newTimes, unsigned char newStride) const
    {
        Field field = *this;
        field.kind = Kind::Numbers;
        field.times = newTimes;
        field.stride = newStride;
        return field;
    }
    constexpr Field in(const char *newUnit, std::uint32_t newScale) const
    {
        Field field = *this;
        field.unit = newUnit;
        field.scale = newScale;
        return field;
    }
    constexpr Field countedBy(const char *newCounter, Extent newExtent = Extent::Counted) const
    {
        Field field = *this;
        field.counter = newCounter;
        field.extent = newExtent;
        return field;
    }
    constexpr Field behindIt() const
    {
        Field field = *this;
        field.follows = true;
        return field;
    }
    constexpr Field standsFor(Codes newCodes) const
    {
        Field field = *this;
        field.codes = newCodes;
        return field;
    }
    constexpr Field noted(const char *newNote) const
    {
        Field field = *this;
        field.note = newNote;
        return field;
    }
};

constexpr Field number(const char *name, unsigned char place, unsigned char size, ByteOrder order)
{
    Field field;
    field.name = name;
    field.place = place;
    field.size = size;
    field.order = order;
    field.most = size == 4 ? 0xFFFFFFFF : (std::uint32_t{1} << 8 * size) - 1;
    return field;
}
constexpr Field u8(const char *name, unsigned char place)
{
    return number(name, place, 1, ByteOrder::LowFirst);
}
constexpr Field u16be(const char *name, unsigned char place)
{
    return number(name, place, 2, ByteOrder::HighFirst);
}
constexpr Field u16le(const char *name, unsigned char place)
{
    return number(name, place, 2, ByteOrder::LowFirst);
}
constexpr Field u32le(const char *name, unsigned char place)
{
    return number(name, place, 4, ByteOrder::LowFirst);
}

constexpr Field string(const char *name, unsigned char place, Kind kind, unsigned char size)
{
    Field field;
    field.name = name;
    field.place = place;
    field.kind = kind;
    field.size = size;
    field.extent = size ? Extent::Fixed : Extent::Rest;
    return field;
}
constexpr Field bits(const char *name, unsigned char place, unsigned char size)
{
    return string(name, place, Kind::Bits, size);
}
/// Of a fixed size, or else all that follows.
constexpr Field bytes(const char *name, unsigned char place, unsigned char size = 0)
{
    return string(name, place, Kind::Bytes, size);
}
constexpr Field text(const char *name, unsigned char place)
{
    return string(name, place, Kind::Text, 0);
}

}  // namespace protocol

#endif
