// What can hang on a serial port, by name.
#ifndef SORVANE_SIM_PERIPHERALS_PERIPHERAL_NAMES_H
#define SORVANE_SIM_PERIPHERALS_PERIPHERAL_NAMES_H

#include <string>
#include <vector>

namespace sim
{

inline const std::vector<std::string> peripheralNames{"loopback", "cctalk", "polled", "sas"};

}  // namespace sim

#endif
