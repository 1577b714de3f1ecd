// The random number generator. It is a fixed sequence here, so that a test can repeat itself: the setting that enables
// it, whose meaning is the firmware's, is the seed. While it is off no number is given.
#ifndef SORVANE_SIM_BOARD_RANDOM_GENERATOR_H
#define SORVANE_SIM_BOARD_RANDOM_GENERATOR_H

#include "sim/board/part.h"

namespace sim
{

class RandomGenerator : public Part
{
public:
    bool enabled() const { return enabled_; }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override { enabled_ = false; }

private:
    std::uint32_t following() const;

    bool enabled_ = false;
    std::uint32_t state_ = 0;
};

}  // namespace sim

#endif
