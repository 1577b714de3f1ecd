// Who the board is: versions, the PIC's serial number and the 1-Wire number.
//
// The layouts are the firmware's. Here both versions are texts with a closing 0 byte, so that a program that prints
// them as strings sees a name and a number.
#ifndef SORVANE_SIM_BOARD_IDENTITY_H
#define SORVANE_SIM_BOARD_IDENTITY_H

#include "sim/board/part.h"
#include "sim/core/model.h"

#include <array>
#include <string>

namespace sim
{

using SerialNumber = std::array<unsigned char, 8>;

/// The 1-Wire check byte of these bytes.
unsigned char oneWireCheck(Payload bytes);

class Identity : public Part
{
public:
    explicit Identity(Model model);

    /// The 48-bit number of the 1-Wire chip, family code 01; its check byte follows from it.
    void setSerialDallas(std::uint64_t number);
    /// With a wrong check byte, say.
    void setSerialDallas(const SerialNumber &bytes) { serialDallas_ = bytes; }
    const SerialNumber &serialDallas() const { return serialDallas_; }

    std::optional<Reply> answer(Request request, Payload payload) override;

private:
    std::string version8051_;
    std::string versionPIC_;
    SerialNumber serialPIC_;
    SerialNumber serialDallas_{};
};

}  // namespace sim

#endif
