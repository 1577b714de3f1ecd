#include "sim/board/pulsed_inputs.h"

namespace sim
{

PulsedInputs::PulsedInputs(Inputs &inputs)
{
    activeLevel_.fill(true);
    inputs.listen([this](unsigned int input, bool level) { changed(input, level); });
}

void PulsedInputs::changed(unsigned int input, bool level)
{
    if (input >= counterCount)
        return;
    Counter &counter = counters_[input];
    if (counter.checking && level == activeLevel_[input])
        ++counter.count;
}

Reply PulsedInputs::ofCounter(Request request, unsigned int input)
{
    if (input >= counterCount)
        return refuse(statusWrongValue);
    Counter &counter = counters_[input];
    if (request == Request::ReadPulsedInputCounter)
        return tell({counter.count});
    return perform([&counter, request] {
        if (request == Request::ResetPulsedInputCounter)
            counter.count = 0;
        else if (counter.count > 0)
            --counter.count;
    });
}

std::optional<Reply> PulsedInputs::answer(Request request, Payload payload)
{
    switch (request) {
    case Request::ConfigurePulsedInput:
        if (payload[0] >= inputCount)
            return refuse(statusWrongValue);
        return perform([this, input = payload[0], high = (payload[2] & 1) != 0] { activeLevel_[input] = high; });
    case Request::PulsedInputCheck:
        if (payload[0] >= counterCount || payload[1] > 1)
            return refuse(statusWrongValue);
        return perform([this, input = payload[0], on = payload[1] == 1] { counters_[input].checking = on; });
    case Request::ResetPulsedInputCounter:
    case Request::DecrementPulsedInputCounter:
    case Request::ReadPulsedInputCounter:
        return ofCounter(request, payload[0]);
    default:
        return std::nullopt;
    }
}

void PulsedInputs::powerLost()
{
    counters_ = {};
    activeLevel_.fill(true);
}

}  // namespace sim
