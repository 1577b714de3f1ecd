// Seconds in a board's unit, truncated from the exact value. A processor that computes in more digits than a double
// has would round differently from one that does not, and a time byte could depend on the build; integers do not.
#ifndef SORVANE_BOARD_EXACT_SECONDS_H
#define SORVANE_BOARD_EXACT_SECONDS_H

#include <cstdint>
#include <cstring>

/// value * 2^shift without its fraction; value is not negative and the result fits 64 bits.
inline std::uint64_t scaled(double value, int shift)
{
    constexpr int fractionBits = 52;
    constexpr int exponentBias = 1023;
    std::uint64_t bits;
    static_assert(sizeof bits == sizeof value);
    std::memcpy(&bits, &value, sizeof bits);
    const int exponent = static_cast<int>(bits >> fractionBits & 0x7FF);
    std::uint64_t mantissa = bits & ((std::uint64_t{1} << fractionBits) - 1);
    if (exponent != 0)
        mantissa |= std::uint64_t{1} << fractionBits;
    const int places = exponent - exponentBias - fractionBits + shift;
    if (places >= 0)
        return mantissa << places;
    return places > -64 ? mantissa >> -places : 0;
}

/// Tenths of a second, for 0 to 25.5 s. 56 binary places hold every double from 0.1 up exactly, and 255 * 2^56 fits.
inline unsigned char tenthsOf(double seconds)
{
    return static_cast<unsigned char>(scaled(seconds, 56) * 10 >> 56);
}

/// Units of 30 ms, for 0 to 7.65 s. 58 binary places hold the double 0.03, and every float from there up, exactly.
inline unsigned char unitsOf30ms(float seconds)
{
    return static_cast<unsigned char>(scaled(static_cast<double>(seconds), 58) / scaled(0.03, 58));
}

#endif
