// The drive of the three reels.
//
// What the settings mean is the firmware's. Here the drive turns the first 0 to 3 reels, as many as it was configured
// for, and one that it is configured for no more is stopped; the reel setting is the number of steps of a turn (0:
// 200), the option and the duty cycle change nothing, a ramp entry is the time of one step in milliseconds (0 counts as
// 1), and the last entry of the ramp up is the time of a running step (4 ms without a ramp). A ramp that comes while
// the reel turns is that of its next spin. Spin mode 1 turns forward by the steps given and 255 backward; 2 and 254
// turn until they are stopped; 0 ramps down. Bit r of the synchronisation byte lets reel r set its count to 0 whenever
// the index passes. Status: first is the count, second the steps left (0xFFFF: until stopped), third 0 still, 1 ramping
// up, 2 running, 3 ramping down, fourth bit 0 synchronised, bit 1 at the index, bit 7 turning backward.
#ifndef SORVANE_SIM_BOARD_REELS_H
#define SORVANE_SIM_BOARD_REELS_H

#include "sim/board/part.h"
#include "sim/core/timeline.h"
#include "sim/peripherals/reel.h"

#include <array>

namespace sim
{

class Reels : public Part
{
public:
    explicit Reels(Timeline &timeline) : timeline_(timeline) {}

    /// The reel as it is now.
    const Reel &at(unsigned int reel);
    /// Which of them turn, at the time of the timeline.
    std::array<bool, 3> turning();
    unsigned int configured() const { return configured_; }
    unsigned char option() const { return option_; }
    Bytes status();

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    void configure(Payload payload);
    Reply spin(Payload payload);
    Reply ramp(bool up, Payload payload);
    void runUntilNow();
    void expectRest();

    Timeline &timeline_;
    std::array<Reel, 3> reels_{Reel(37), Reel(91), Reel(140)};
    unsigned char configured_ = 0;
    unsigned char option_ = 0;
};

}  // namespace sim

#endif
