// The backup battery. Its failure is remembered as a flag, with the time of the clock. A board without power loses its
// clock, its switch log with the flags, and its SRAM as soon as the battery is empty too, and until one of the two is
// back it stands still: the clock does not run and nobody logs a switch.
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
    void replace();
    bool good() const { return good_; }

    /// The board's own supply comes or goes; without it there is only the battery.
    void setMainPower(bool on);
    /// Whether the board has any power.
    bool boardHasPower() const { return good_ || mainPower_; }

    /// How the battery learns the time of its failure.
    void readTimeFrom(std::function<std::uint32_t()> now) { now_ = std::move(now); }
    /// What happens when the board has no power left, and when it has some again.
    void onLoss(std::function<void()> lost) { lost_ = std::move(lost); }

    std::optional<Reply> answer(Request request, Payload payload) override;

private:
    std::function<std::uint32_t()> now_;
    std::function<void()> lost_ = [] {};
    std::uint32_t failedAt_ = 0;
    bool good_ = true;
    bool mainPower_ = true;
    bool failFlag_ = false;
};

}  // namespace sim

#endif
