// The board's own counter of the pulses on one input: of coins, of presses, of coins that leave the hopper.
//
// The board counts while the program is busy, or not there at all, so no pulse is missed. The counter is only ever
// read: whoever remembers its last reading knows what has come since, and no pulse can fall between a reading and a
// reset. It has 8 bits and wraps.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_PULSE_COUNTER_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_PULSE_COUNTER_H

#include "board_access.h"
#include "wiring.h"

namespace fruit_machine
{

class PulseCounter
{
public:
    PulseCounter(SorvaneUSB &board, _usbInputBitId input) : board_(board), input_(input) {}

    /// Lets the board count; a counter that counts already goes on.
    void begin()
    {
        must(board_.ConfigurePulsedInput(input_, inputSetting, activeHigh), board_, "ConfigurePulsedInput");
        must(board_.BeginPulsedInputCheck(input_), board_, "BeginPulsedInputCheck");
    }

    unsigned char read()
    {
        unsigned char count = 0;
        must(board_.ReadPulsedInputCounter(input_, &count), board_, "ReadPulsedInputCounter");
        return count;
    }

    /// The pulses since the reading `seen`, which becomes the new one.
    unsigned int since(unsigned char &seen)
    {
        const unsigned char now = read();
        const auto pulses = static_cast<unsigned char>(now - seen);
        seen = now;
        return pulses;
    }

private:
    SorvaneUSB &board_;
    _usbInputBitId input_;
};

}  // namespace fruit_machine

#endif
