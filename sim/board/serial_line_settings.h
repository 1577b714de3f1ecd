// What a port was configured for, decoded from the bytes of its timer.
#ifndef SORVANE_SIM_BOARD_SERIAL_LINE_SETTINGS_H
#define SORVANE_SIM_BOARD_SERIAL_LINE_SETTINGS_H

#include "sim/core/bytes.h"
#include "sim/core/clock.h"

#include <optional>

namespace sim
{

struct SerialLineSettings {
    unsigned int baudRate = 9600;
    unsigned char portType = 0;
    unsigned char format = 0;
    unsigned char options23 = 0;
    unsigned char option1 = 0;

    /// The meaning of the port types is the firmware's; here type 3 is a line with 9 data bits.
    bool nineBit() const { return portType == 3; }
    /// A start bit, the data bits and a stop bit.
    Nanoseconds wordTime() const;
};

/// The six bytes of a configuration; nothing when a value or the divisor is none that the port knows.
std::optional<SerialLineSettings> decodeSerialConfig(unsigned int port, Payload payload);

}  // namespace sim

#endif
