// Bytes as they travel between a caller and the board.
#ifndef SORVANE_SIM_CORE_BYTES_H
#define SORVANE_SIM_CORE_BYTES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace sim
{

using Bytes = std::vector<unsigned char>;

/// The bytes behind a request code. They stay alive until the exchange is over.
using Payload = std::span<const unsigned char>;

/// Words of a serial line: 8 data bits, or 9 on a line in 9-bit mode.
using Words = std::vector<std::uint16_t>;

inline unsigned char lowByte(std::uint32_t value)
{
    return static_cast<unsigned char>(value & 0xFF);
}

inline unsigned char highByte(std::uint32_t value)
{
    return static_cast<unsigned char>(value >> 8 & 0xFF);
}

inline std::uint16_t u16be(Payload bytes, std::size_t at)
{
    return static_cast<std::uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

inline std::uint16_t u16le(Payload bytes, std::size_t at)
{
    return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

inline std::uint32_t u32le(Payload bytes, std::size_t at)
{
    return u16le(bytes, at) | static_cast<std::uint32_t>(u16le(bytes, at + 2)) << 16;
}

inline Bytes bytesOf32le(std::uint32_t value)
{
    return {lowByte(value), highByte(value), lowByte(value >> 16), highByte(value >> 16)};
}

inline Bytes toBytes(Payload bytes)
{
    return {bytes.begin(), bytes.end()};
}

inline void append(Bytes &bytes, Payload more)
{
    bytes.resize(bytes.size() + more.size());
    std::copy(more.begin(), more.end(), bytes.end() - static_cast<std::ptrdiff_t>(more.size()));
}

}  // namespace sim

#endif
