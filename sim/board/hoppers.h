// Coin releases of parallel hoppers.
//
// A release drives its output by itself, as a pulse does: the flash patterns neither show it nor end it, and the output
// goes back to them afterwards. It ends when
// - all coins have passed the coin input (status 1; one of no coins is over at once),
// - no coin has come for two seconds (2),
// - request 124, which an R20 lacks, stops the input's release (3),
// - request 77 comes with the output in its off set (3),
// - the board loses its power (0, as if it had never been asked).
// Only status 4, active, is known; the others are chosen here. The second byte is the low byte of the coins paid since
// the last release began. Bit 0 of the active state is the level that counts as a coin; the setting bytes make no
// difference. Several releases may drive one output.
#ifndef SORVANE_SIM_BOARD_HOPPERS_H
#define SORVANE_SIM_BOARD_HOPPERS_H

#include "sim/board/inputs.h"
#include "sim/board/outputs.h"
#include "sim/peripherals/hopper.h"

#include <map>

namespace sim
{

constexpr unsigned char hopperIdle = 0;
constexpr unsigned char hopperPaid = 1;
constexpr unsigned char hopperRanOut = 2;
constexpr unsigned char hopperStopped = 3;
constexpr unsigned char hopperActive = 4;
constexpr Nanoseconds coinTimeout = std::chrono::seconds(2);

class Hoppers : public Part
{
public:
    struct Release {
        unsigned int output = 0;
        unsigned int asked = 0;
        unsigned int paid = 0;
        unsigned char status = hopperIdle;
        bool activeLevel = true;
    };

    Hoppers(Timeline &timeline, Inputs &inputs, Outputs &outputs);

    /// The hopper whose coins pass this input; hangs an empty one there if there is none.
    Hopper &at(unsigned int input);
    const std::map<unsigned int, Hopper> &all() const { return hoppers_; }
    const std::map<unsigned int, Release> &releases() const { return releases_; }
    /// The last release that was asked of an input.
    Release release(unsigned int input) const;

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    void start(unsigned int input, const Release &release);
    void end(unsigned int input, unsigned char status);
    void outputsChanged(const Pattern &switchedOff);
    bool drives(unsigned int output) const;
    void changed(unsigned int input, bool level);
    void expectCoin(unsigned int input);

    Timeline &timeline_;
    Inputs &inputs_;
    Outputs &outputs_;
    std::map<unsigned int, Hopper> hoppers_;
    std::map<unsigned int, Release> releases_;
};

}  // namespace sim

#endif
