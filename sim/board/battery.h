// The backup battery. Its failure is remembered as a flag, with the time of the clock; a board without power loses its
// clock, its switch log and its SRAM when the battery is empty.
#ifndef SORVANE_SIM_BOARD_BATTERY_H
#define SORVANE_SIM_BOARD_BATTERY_H

#include "sim/board/part.h"

namespace sim
{

class Battery : public Part
{
public:
    /// The battery is empty from now on.
    void fail();
    void replace() { good_ = true; }
    bool good() const { return good_; }
    /// What ReadAndResetBatteryFailFlag reports next: 1 after a failure.
    bool failFlag() const { return failFlag_; }

    /// How the battery learns the time of its failure.
    void readTimeFrom(std::function<std::uint32_t()> now) { now_ = std::move(now); }

    std::optional<Reply> answer(Request request, Payload payload) override;

private:
    std::function<std::uint32_t()> now_;
    std::uint32_t failedAt_ = 0;
    bool good_ = true;
    bool failFlag_ = false;
};

}  // namespace sim

#endif
