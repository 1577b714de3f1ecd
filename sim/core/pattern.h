// Inputs and outputs by number, and sets of them: number n is bit n % 8 of byte n / 8.
#ifndef SORVANE_SIM_CORE_PATTERN_H
#define SORVANE_SIM_CORE_PATTERN_H

#include <array>
#include <cstddef>

namespace sim
{

constexpr unsigned int inputCount = 33;
constexpr unsigned int outputCount = 38;

using Pattern = std::array<unsigned char, 5>;

inline bool holds(const Pattern &pattern, unsigned int number)
{
    return number < 8 * pattern.size() && (pattern[number / 8] >> number % 8 & 1) != 0;
}

inline void put(Pattern &pattern, unsigned int number, bool on)
{
    const auto mask = static_cast<unsigned char>(1U << number % 8);
    unsigned char &byte = pattern.at(number / 8);
    byte = static_cast<unsigned char>(on ? byte | mask : byte & ~mask);
}

}  // namespace sim

#endif
