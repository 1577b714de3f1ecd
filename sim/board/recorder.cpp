#include "sim/board/recorder.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr unsigned char emptyEntry = 255;
constexpr Nanoseconds samplePeriodUnit = std::chrono::microseconds(100);

}  // namespace

Reply Recorder::configure(Payload payload)
{
    const Payload inputs = payload.first(recorded_.size());
    const std::size_t address = payload[4] * sramPageSize + u16be(payload, 5);
    const unsigned int length = u16be(payload, 7);
    const bool valid =
        std::all_of(inputs.begin(), inputs.end(), [](auto input) { return input < 24 || input == emptyEntry; }) &&
        std::any_of(inputs.begin(), inputs.end(), [](auto input) { return input != emptyEntry; });
    if (!valid || address + length > sram_.size())
        return refuse(statusWrongValue);
    return perform([this, inputs, address, length] {
        timeline_.cancel(this);
        std::copy(inputs.begin(), inputs.end(), recorded_.begin());
        address_ = address;
        length_ = length;
        taken_ = 0;
        state_ = State::Configured;
    });
}

Reply Recorder::start(Nanoseconds period)
{
    if (state_ == State::NotConfigured)
        return refuse(statusNotConfigured);
    return perform([this, period] {
        timeline_.cancel(this);
        period_ = period;
        taken_ = 0;
        state_ = State::Recording;
        sample();
    });
}

void Recorder::sample()
{
    if (taken_ == length_) {
        state_ = State::Complete;
        return;
    }
    unsigned int levels = 0;
    for (unsigned int i = 0; i < recorded_.size(); ++i) {
        if (recorded_[i] != emptyEntry && inputs_.level(recorded_[i]))
            levels |= 1U << i;
    }
    sram_.set(address_ + taken_, lowByte(levels));
    ++taken_;
    timeline_.after(period_, this, [this] { sample(); });
}

std::optional<Reply> Recorder::answer(Request request, Payload payload)
{
    switch (request) {
    case Request::ConfigureRecordingInputs:
        return configure(payload);
    case Request::StartRecordingInputs:
        return u16be(payload, 0) == 0 ? refuse(statusWrongValue) : start(u16be(payload, 0) * samplePeriodUnit);
    case Request::GetRecordingStatus: {
        const unsigned int left = length_ - taken_;
        return tell(
            {static_cast<unsigned char>(state_), highByte(taken_), lowByte(taken_), highByte(left), lowByte(left)});
    }
    default:
        return std::nullopt;
    }
}

void Recorder::powerLost()
{
    timeline_.cancel(this);
    state_ = State::NotConfigured;
    length_ = 0;
    taken_ = 0;
}

}  // namespace sim
