#include "sim/board/pulsed_outputs.h"

namespace sim
{

void PulsedOutputs::start(unsigned int output, Nanoseconds length, bool level)
{
    if (pulseOf_[output] == 0)
        ++running_;
    const unsigned int pulse = ++lastPulse_;
    pulseOf_[output] = pulse;
    lastOutput_ = lowByte(output);
    outputs_.force(output, level);
    timeline_.after(length, this, [this, output, pulse] { end(output, pulse); });
}

// A pulse that another one of the same output has overtaken has nothing left to end.
void PulsedOutputs::end(unsigned int output, unsigned int pulse)
{
    if (pulseOf_[output] != pulse)
        return;
    pulseOf_[output] = 0;
    outputs_.force(output, std::nullopt);
    --running_;
    ++ended_;
}

std::optional<Reply> PulsedOutputs::answer(Request request, Payload payload)
{
    switch (request) {
    case Request::PulseOutput:
    case Request::PulseOffOutput:
        if (payload[1] >= pulsedOutputCount)
            return refuse(statusWrongValue);
        return perform([this, length = payload[0] * pulseUnit, output = payload[1],
                        on = request == Request::PulseOutput] { start(output, length, on); });
    case Request::PulseOutputResult:
        return tell({lowByte(running_), lastOutput_, lowByte(ended_)});
    default:
        return std::nullopt;
    }
}

void PulsedOutputs::powerLost()
{
    timeline_.cancel(this);
    pulseOf_ = {};
    running_ = 0;
    ended_ = 0;
    lastOutput_ = 0;
}

}  // namespace sim
