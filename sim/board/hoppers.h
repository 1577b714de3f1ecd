// Coin releases of parallel hoppers.
//
// The board switches the drive output on, counts the coins that pass the coin input, and switches off when enough have
// passed, when no coin has come for two seconds, or when it is told to stop. Only status 4, active, is known; here 0 is
// a hopper that was never asked, 1 all coins paid, 2 no more coins came, 3 stopped. The second byte is the low byte of
// the coins paid since the last release began. The setting bytes make no difference.
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
    /// The last release that was asked of an input.
    Release release(unsigned int input) const;

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    void start(unsigned int input, const Release &release);
    void end(unsigned int input, unsigned char status);
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
