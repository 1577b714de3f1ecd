// Pulses of outputs 0 to 31.
//
// The unit of the pulse value and the three bytes of the report are the firmware's. Here the unit is 10 ms, and the
// report is: how many pulses run, the output that was pulsed last, how many pulses have ended (modulo 256).
#ifndef SORVANE_SIM_BOARD_PULSED_OUTPUTS_H
#define SORVANE_SIM_BOARD_PULSED_OUTPUTS_H

#include "sim/board/outputs.h"

namespace sim
{

constexpr unsigned int pulsedOutputCount = 32;
constexpr Nanoseconds pulseUnit = std::chrono::milliseconds(10);

class PulsedOutputs : public Part
{
public:
    PulsedOutputs(Timeline &timeline, Outputs &outputs) : timeline_(timeline), outputs_(outputs) {}

    unsigned int running() const { return running_; }
    unsigned int ended() const { return ended_; }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    void start(unsigned int output, Nanoseconds length, bool level);
    void end(unsigned int output, unsigned int pulse);

    Timeline &timeline_;
    Outputs &outputs_;
    std::array<unsigned int, pulsedOutputCount> pulseOf_{};  // number of the pulse that runs; 0: none
    unsigned int lastPulse_ = 0;
    unsigned int running_ = 0;
    unsigned int ended_ = 0;
    unsigned char lastOutput_ = 0;
};

}  // namespace sim

#endif
