// The peripherals of a serial port by name.
#ifndef SORVANE_SIM_PERIPHERALS_MAKE_PERIPHERAL_H
#define SORVANE_SIM_PERIPHERALS_MAKE_PERIPHERAL_H

#include "sim/peripherals/serial_peripheral.h"

#include <memory>
#include <string>
#include <vector>

namespace sim
{

/// A peripheral by name: loopback, cctalk, polled, sas; null for any other.
std::unique_ptr<SerialPeripheral> makePeripheral(const std::string &name);
const std::vector<std::string> &peripheralNames();

}  // namespace sim

#endif
