#include "sim/board/outputs.h"

#include <algorithm>

namespace sim
{

namespace
{

void switchPattern(Pattern &pattern, Payload onThenOff)
{
    for (std::size_t i = 0; i < pattern.size(); ++i)
        pattern[i] = static_cast<unsigned char>((pattern[i] | onThenOff[i]) & ~onThenOff[i + pattern.size()]);
}

Pattern toPattern(Payload payload)
{
    Pattern pattern;
    std::copy_n(payload.begin(), pattern.size(), pattern.begin());
    return pattern;
}

}  // namespace

bool Outputs::inOnPeriod() const
{
    return timeline_.now() / flashPeriod % 2 == 0;
}

bool Outputs::unlessPulsed(unsigned int output, bool level) const
{
    return holds(pulsedOn_, output) || (level && !holds(pulsedOff_, output));
}

bool Outputs::lit(unsigned int output) const
{
    return unlessPulsed(output, holds(driven_, output) || holds(inOnPeriod() ? onPattern_ : offPattern_, output));
}

bool Outputs::litOrFlashing(unsigned int output) const
{
    return unlessPulsed(output, holds(driven_, output) || holds(onPattern_, output) || holds(offPattern_, output));
}

Pattern Outputs::litNow() const
{
    Pattern now{};
    for (unsigned int output = 0; output < outputCount; ++output)
        put(now, output, lit(output));
    return now;
}

void Outputs::drive(unsigned int output, bool on)
{
    put(driven_, output, on);
    changed();
}

void Outputs::force(unsigned int output, std::optional<bool> level)
{
    put(pulsedOn_, output, level == true);
    put(pulsedOff_, output, level == false);
    changed();
}

void Outputs::changed(const Pattern &switchedOff)
{
    if (listener_)
        listener_(switchedOff);
}

void Outputs::modify(Payload onThenOff)
{
    switchPattern(onPattern_, onThenOff);
    switchPattern(offPattern_, onThenOff);
    changed(toPattern(onThenOff.subspan(onPattern_.size())));
}

std::optional<Reply> Outputs::answer(Request request, Payload payload)
{
    switch (request) {
    case Request::ModifyOutputs:
        return perform([this, payload] { modify(payload); });
    case Request::SetOnPeriodOutputs:
    case Request::SetOffPeriodOutputs:
        return perform([this, payload, &pattern = request == Request::SetOnPeriodOutputs ? onPattern_ : offPattern_] {
            pattern = toPattern(payload);
            changed();
        });
    case Request::SetOutputBrightness:
        if (payload[0] > fullBrightness)
            return refuse(statusWrongValue);
        return perform([this, level = payload[0]] { brightness_ = level; });
    default:
        return std::nullopt;
    }
}

void Outputs::powerLost()
{
    onPattern_ = {};
    offPattern_ = {};
    driven_ = {};
    pulsedOn_ = {};
    pulsedOff_ = {};
    brightness_ = fullBrightness;
    changed();
}

}  // namespace sim
