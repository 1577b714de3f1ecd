// The ten EEPROM chips that a board can carry, by name.
#ifndef SORVANE_SIM_CORE_EEPROM_CHIPS_H
#define SORVANE_SIM_CORE_EEPROM_CHIPS_H

#include "api/sorvaneusb_types.h"

#include <string_view>

namespace sim
{

struct EEPROMChip {
    const char *name;  ///< "24LC256"
    const R20EEPROM &description;
};

inline constexpr EEPROMChip eepromChips[] = {
    {"24LC01", E24LC01}, {"24LC02", E24LC02}, {"24LC04", E24LC04},   {"24LC08", E24LC08},   {"24LC16", E24LC16},
    {"24LC32", E24LC32}, {"24LC64", E24LC64}, {"24LC128", E24LC128}, {"24LC256", E24LC256}, {"24LC512", E24LC512},
};

/// Null for any other name.
inline const EEPROMChip *findEEPROMChip(std::string_view name)
{
    for (const EEPROMChip &chip : eepromChips) {
        if (chip.name == name)
            return &chip;
    }
    return nullptr;
}

}  // namespace sim

#endif
