#include "sim/core/eeprom_chips.h"

namespace sim
{

// The constants are referred to, not copied: so the table is there before any static object.
const EEPROMChip eepromChips[eepromChipCount] = {
    {"24LC01", E24LC01}, {"24LC02", E24LC02}, {"24LC04", E24LC04},   {"24LC08", E24LC08},   {"24LC16", E24LC16},
    {"24LC32", E24LC32}, {"24LC64", E24LC64}, {"24LC128", E24LC128}, {"24LC256", E24LC256}, {"24LC512", E24LC512},
};

const EEPROMChip *findEEPROMChip(std::string_view name)
{
    for (const EEPROMChip &chip : eepromChips) {
        if (chip.name == name)
            return &chip;
    }
    return nullptr;
}

}  // namespace sim
