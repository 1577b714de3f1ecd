#include "sim/board/serial_line_settings.h"

#include <algorithm>

namespace sim
{

namespace
{

struct Divisor {
    unsigned int baudRate;
    unsigned char a;
    unsigned char b;
};

constexpr Divisor port0[] = {{1200, 0x98, 0},  {2400, 0x64, 1},  {4800, 0xB2, 1}, {9600, 0xD9, 1},
                             {19200, 0xEC, 1}, {38400, 0xF6, 1}, {62500, 0xFA, 1}};
constexpr Divisor port1[] = {{110, 0xBB, 0xCA},   {300, 0x78, 0xEC},   {600, 0x3C, 0xF6},   {1200, 0x1F, 0xFB},
                             {2400, 0x8F, 0xFD},  {4800, 0xC8, 0xFE},  {9600, 0x64, 0xFF},  {14400, 0x98, 0xFF},
                             {19200, 0xB2, 0xFF}, {38400, 0xD8, 0xFF}, {57600, 0xE6, 0xFF}, {62500, 0xE8, 0xFF}};

unsigned int baudRateOf(unsigned int port, unsigned char a, unsigned char b)
{
    const std::span<const Divisor> divisors = port == 0 ? std::span<const Divisor>(port0) : port1;
    const auto found = std::find_if(divisors.begin(), divisors.end(),
                                    [a, b](const Divisor &divisor) { return divisor.a == a && divisor.b == b; });
    return found == divisors.end() ? 0 : found->baudRate;
}

}  // namespace

Nanoseconds SerialLineSettings::wordTime() const
{
    return Nanoseconds(std::chrono::seconds(nineBit() ? 11 : 10)) / baudRate;
}

std::optional<SerialLineSettings> decodeSerialConfig(unsigned int port, Payload payload)
{
    const SerialLineSettings settings{baudRateOf(port, payload[4], payload[5]), payload[0], payload[1], payload[2],
                                      payload[3]};
    const bool known = settings.baudRate != 0 && settings.portType <= 3 && settings.format <= 3 &&
                       settings.options23 <= 3 && settings.option1 <= 1 &&
                       (settings.format != 3 || settings.portType == 0);
    if (!known)
        return std::nullopt;
    return settings;
}

}  // namespace sim
