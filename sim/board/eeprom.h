// The serial EEPROM behind the firmware: any of the ten chips.
//
// The firmware takes any description and uses it as it stands. A chip acknowledges only on its own bus address and with
// its own number of address bytes, so with a wrong description every read and write fails; an address beyond its
// capacity wraps. A write is carried out whole. How the firmware splits it into the chip's pages does not show.
#ifndef SORVANE_SIM_BOARD_EEPROM_H
#define SORVANE_SIM_BOARD_EEPROM_H

#include "sim/board/diary.h"
#include "sim/board/part.h"
#include "sim/core/eeprom_chips.h"

namespace sim
{

class EEPROM : public Part
{
public:
    explicit EEPROM(Diary &diary) : diary_(diary) { fit(E24LC256); }

    /// Fits another chip, filled so that no two places look alike.
    void fit(const R20EEPROM &chip);
    /// Every byte is 0xFF, as in a new chip.
    void blank();

    const char *name() const;
    std::size_t size() const { return memory_.size(); }
    unsigned char at(std::size_t address) const { return memory_.at(address); }
    /// Behind the last address follows the first.
    void write(std::size_t address, Payload bytes);
    void set(std::size_t address, unsigned char value) { write(address, {&value, 1}); }
    /// What the firmware has been told about the chip.
    const std::optional<R20EEPROM> &configuration() const { return configuration_; }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override { configuration_.reset(); }

private:
    int failure() const;
    Reply read(Payload payload);
    Reply write(Payload payload);

    Diary &diary_;
    R20EEPROM chip_{};
    Bytes memory_;
    std::optional<R20EEPROM> configuration_;
};

}  // namespace sim

#endif
