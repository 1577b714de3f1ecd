// What can hang on a serial port, by name.
#ifndef SORVANE_SIM_PERIPHERALS_PERIPHERAL_NAMES_H
#define SORVANE_SIM_PERIPHERALS_PERIPHERAL_NAMES_H

#include <string>
#include <vector>

namespace sim
{

/// Also before a program's own static objects are there.
inline const std::vector<std::string> &peripheralNames()
{
    static const std::vector<std::string> names{"loopback", "cctalk", "polled", "sas"};
    return names;
}

}  // namespace sim

#endif
