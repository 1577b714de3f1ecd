// The ten EEPROM chips that a board can carry, by name.
#ifndef SORVANE_SIM_CORE_EEPROM_CHIPS_H
#define SORVANE_SIM_CORE_EEPROM_CHIPS_H

#include "api/sorvaneusb_types.h"

#include <cstddef>
#include <string_view>

namespace sim
{

struct EEPROMChip {
    const char *name;  ///< "24LC256"
    const R20EEPROM &description;
};

constexpr std::size_t eepromChipCount = 10;
extern const EEPROMChip eepromChips[eepromChipCount];

/// Null for any other name.
const EEPROMChip *findEEPROMChip(std::string_view name);

}  // namespace sim

#endif
