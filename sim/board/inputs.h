// The 33 inputs and the four groups of multiplexed ones.
//
// The firmware's rules for its three readings are not known. Here the contacts do not bounce, so the raw and the
// ordinary reading are the same, and the changed inputs are those whose level differs from when they were last asked
// for.
#ifndef SORVANE_SIM_BOARD_INPUTS_H
#define SORVANE_SIM_BOARD_INPUTS_H

#include "sim/board/part.h"
#include "sim/core/pattern.h"
#include "sim/core/timeline.h"

namespace sim
{

constexpr unsigned int firstBoardNumberInput = 24;

/// How long a pulse of a coin mechanism or a sensor is on, and the shortest pause behind it.
constexpr Nanoseconds pulseLength = std::chrono::milliseconds(20);

class Inputs : public Part
{
public:
    using Listener = std::function<void(unsigned int input, bool level)>;

    explicit Inputs(Timeline &timeline) : timeline_(timeline) {}

    /// Sets an input's level; a number above 32 throws std::out_of_range, here and below.
    void set(unsigned int input, bool level);
    bool level(unsigned int input) const;
    const Pattern &levels() const { return levels_; }

    /// `count` pulses to this level, one every 40 ms, the first at once (or behind those that are still to come on this
    /// input).
    void pulse(unsigned int input, unsigned int count = 1, bool level = true);

    /// One of the 12 bytes of the multiplexed inputs, group 0 to 3, index 0 to 2.
    void setMultiplexed(unsigned int group, unsigned int index, unsigned char value);
    bool multiplexing() const { return multiplexing_; }

    /// The number 0 to 7 that the board's jumpers put on inputs 24 to 26.
    void setBoardNumber(unsigned int number);
    unsigned int boardNumber() const;

    /// Whoever counts or records is told of every change, at the time at which it happens.
    void listen(Listener listener) { listeners_.push_back(std::move(listener)); }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    Reply changed();
    Reply multiplexed() const;

    Timeline &timeline_;
    Pattern levels_{};
    Pattern reported_{};
    std::array<Nanoseconds, inputCount> pulsesEnd_{};
    std::array<unsigned char, 12> multiplexed_{};
    bool multiplexing_ = false;
    std::vector<Listener> listeners_;
};

}  // namespace sim

#endif
