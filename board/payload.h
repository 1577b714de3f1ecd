// How numbers become bytes on their way to a board. The fields of one request differ in their byte order, so each
// operation names the bytes one by one.
#ifndef SORVANE_BOARD_PAYLOAD_H
#define SORVANE_BOARD_PAYLOAD_H

#include <cstring>

/// Byte n of a number, 0 being the least significant. Identifiers and enumerations travel as their byte 0.
template <class Value>
constexpr unsigned char byteOf(Value value, int n)
{
    return static_cast<unsigned char>(static_cast<unsigned long>(value) >> (8 * n));
}

template <class Value>
constexpr unsigned char low(Value value)
{
    return byteOf(value, 0);
}

template <class Value>
constexpr unsigned char high(Value value)
{
    return byteOf(value, 1);
}

/// A payload whose length is known only at run time: some bytes of its own, then bytes of the caller's. Nothing tests
/// the capacity; each operation bounds its lengths before it appends.
template <unsigned long Capacity>
class Payload
{
public:
    template <class... Byte>
    explicit Payload(Byte... first) : length(sizeof...(first))
    {
        static_assert(sizeof...(first) <= Capacity);
        unsigned char *place = bytes;
        ((*place++ = low(first)), ...);
    }

    Payload &append(const unsigned char *data, unsigned long count)
    {
        std::memcpy(bytes + length, data, count);
        length += count;
        return *this;
    }

    unsigned char bytes[Capacity];
    unsigned long length;
};

#endif
