// The peripherals of a serial port by name.
#ifndef SORVANE_SIM_PERIPHERALS_MAKE_PERIPHERAL_H
#define SORVANE_SIM_PERIPHERALS_MAKE_PERIPHERAL_H

#include "sim/peripherals/peripheral_names.h"
#include "sim/peripherals/serial_peripheral.h"

#include <memory>

namespace sim
{

/// A peripheral by one of the names; null for any other.
std::unique_ptr<SerialPeripheral> makePeripheral(const std::string &name);

}  // namespace sim

#endif
