// The lamps, each off, on or flashing.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_LAMPS_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_LAMPS_H

#include "board_access.h"

#include <array>

namespace fruit_machine
{

enum class Light { Off, On, Flashing };

class Lamps
{
public:
    explicit Lamps(SorvaneUSB &board) : board_(board) {}

    /// Switches every output off, the hopper's motor too.
    void allOff();
    /// Let none flash while the hopper pays: the board takes a flash pattern only as a whole, and in the library's
    /// pattern the motor, which the board switches by itself, is off.
    void set(_usbOutputBitId lamp, Light light);

private:
    SorvaneUSB &board_;
    std::array<Light, 38> lights_{};
};

}  // namespace fruit_machine

#endif
