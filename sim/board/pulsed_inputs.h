// Counters of pulses on inputs 0 to 23.
//
// A counter counts while a check of its input is on, has 8 bits and wraps. The firmware's settings are its own; here
// bit 0 of the active state is the level at which an input is active, a pulse is counted when its input becomes
// active, and the two setting bytes make no difference: no pulse is too short. An input that was never configured is
// active high. A counter at 0 stays there when it is decremented.
#ifndef SORVANE_SIM_BOARD_PULSED_INPUTS_H
#define SORVANE_SIM_BOARD_PULSED_INPUTS_H

#include "sim/board/inputs.h"

namespace sim
{

constexpr unsigned int counterCount = 24;

class PulsedInputs : public Part
{
public:
    struct Counter {
        unsigned char count = 0;
        bool checking = false;
    };

    explicit PulsedInputs(Inputs &inputs);

    const Counter &counter(unsigned int input) const { return counters_.at(input); }
    bool activeLevel(unsigned int input) const { return activeLevel_.at(input); }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    void changed(unsigned int input, bool level);
    Reply ofCounter(Request request, unsigned int input);

    std::array<Counter, counterCount> counters_{};
    std::array<bool, inputCount> activeLevel_;
};

}  // namespace sim

#endif
