#include "sim/board/inputs.h"

#include <algorithm>
#include <stdexcept>

namespace sim
{

namespace
{

constexpr unsigned char boardNumberMask = 7;

}  // namespace

void Inputs::set(unsigned int input, bool level)
{
    if (input >= inputCount)
        throw std::out_of_range("input");
    if (holds(levels_, input) == level)
        return;
    put(levels_, input, level);
    for (const Listener &listener : listeners_)
        listener(input, level);
}

bool Inputs::level(unsigned int input) const
{
    return holds(levels_, input);
}

void Inputs::pulse(unsigned int input, unsigned int count, bool level)
{
    Nanoseconds &end = pulsesEnd_.at(input);
    end = std::max(end, timeline_.now());
    for (unsigned int i = 0; i < count; ++i) {
        timeline_.at(end, this, [=, this] { set(input, level); });
        timeline_.at(end + pulseLength, this, [=, this] { set(input, !level); });
        end += 2 * pulseLength;
    }
}

void Inputs::setMultiplexed(unsigned int group, unsigned int index, unsigned char value)
{
    if (group > 3 || index > 2)
        throw std::out_of_range("multiplexed input");
    multiplexed_[3 * group + index] = value;
}

void Inputs::setBoardNumber(unsigned int number)
{
    for (unsigned int bit = 0; bit < 3; ++bit)
        set(firstBoardNumberInput + bit, (number >> bit & 1) != 0);
    reported_[3] = static_cast<unsigned char>((reported_[3] & ~boardNumberMask) | (levels_[3] & boardNumberMask));
}

unsigned int Inputs::boardNumber() const
{
    return levels_[3] & boardNumberMask;
}

Reply Inputs::changed()
{
    Bytes bytes(levels_.size());
    std::transform(levels_.begin(), levels_.end(), reported_.begin(), bytes.begin(),
                   [](unsigned char now, unsigned char before) { return static_cast<unsigned char>(now ^ before); });
    return tell(bytes, [this] { reported_ = levels_; });
}

// The meaning of the lead byte is the firmware's: here 1 while the groups are scanned, and zeros when they are not.
Reply Inputs::multiplexed() const
{
    Bytes bytes(13);
    if (multiplexing_) {
        bytes[0] = 1;
        std::copy(multiplexed_.begin(), multiplexed_.end(), bytes.begin() + 1);
    }
    return tell(bytes);
}

std::optional<Reply> Inputs::answer(Request request, Payload payload)
{
    switch (request) {
    case Request::GetInputs:
    case Request::GetRawInputs:
        return tell(toBytes(levels_));
    case Request::GetChangedInputs:
        return changed();
    case Request::InputMultiplexing:
        if (payload[0] > 1)
            return refuse(statusWrongValue);
        return perform([this, on = payload[0] == 1] { multiplexing_ = on; });
    case Request::GetMultiplexedInputs:
        return multiplexed();
    default:
        return std::nullopt;
    }
}

void Inputs::powerLost()
{
    multiplexing_ = false;
    reported_ = levels_;
}

}  // namespace sim
