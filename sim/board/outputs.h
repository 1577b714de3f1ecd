// The 38 outputs: two patterns that take turns, a common brightness, and pulses that end by themselves.
//
// An output of both patterns is steadily on, one of a single pattern flashes. The lengths of the two periods are the
// firmware's; here each lasts half a second, the on period first, in step with the board's clock. An output
// that is switched on and off in the same request ends off.
#ifndef SORVANE_SIM_BOARD_OUTPUTS_H
#define SORVANE_SIM_BOARD_OUTPUTS_H

#include "sim/board/part.h"
#include "sim/core/pattern.h"
#include "sim/core/timeline.h"

namespace sim
{

constexpr Nanoseconds flashPeriod = std::chrono::milliseconds(500);
constexpr unsigned char fullBrightness = 10;

class Outputs : public Part
{
public:
    using Listener = std::function<void(const Pattern &switchedOff)>;

    explicit Outputs(Timeline &timeline) : timeline_(timeline) {}

    const Pattern &onPattern() const { return onPattern_; }
    const Pattern &offPattern() const { return offPattern_; }
    /// The outputs that a hopper's release drives.
    const Pattern &driven() const { return driven_; }
    /// The outputs that a pulse keeps on, and off.
    const Pattern &pulsedOn() const { return pulsedOn_; }
    const Pattern &pulsedOff() const { return pulsedOff_; }
    unsigned int brightness() const { return brightness_; }
    bool inOnPeriod() const;

    /// Whether an output is on at this moment: its flash phase, a pulse and a release that run are counted in.
    bool lit(unsigned int output) const;
    Pattern litNow() const;

    /// Whether it is on or goes on in the other flash period.
    bool litOrFlashing(unsigned int output) const;

    /// While a hopper's release drives it the output is on, whatever the patterns say. See hoppers.h.
    void drive(unsigned int output, bool on);

    /// For the pulse's time the output is on, or off, whatever else holds. See pulsed_outputs.h.
    void force(unsigned int output, std::optional<bool> level);

    /// Whoever drives outputs, or hangs on one, is told whenever they may have changed, and which ones a request to
    /// switch them has in its off set.
    void listen(Listener listener) { listener_ = std::move(listener); }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    bool unlessPulsed(unsigned int output, bool level) const;
    void modify(Payload onThenOff);
    void changed(const Pattern &switchedOff = {});

    Timeline &timeline_;
    Pattern onPattern_{};
    Pattern offPattern_{};
    Pattern driven_{};
    Pattern pulsedOn_{};
    Pattern pulsedOff_{};
    unsigned char brightness_ = fullBrightness;
    Listener listener_;
};

}  // namespace sim

#endif
