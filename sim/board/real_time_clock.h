// The board's clock: a count of seconds from whatever it was set to, 0 when the board was built. Its unit and epoch are
// the firmware's. It runs on the battery while the board has no power.
#ifndef SORVANE_SIM_BOARD_REAL_TIME_CLOCK_H
#define SORVANE_SIM_BOARD_REAL_TIME_CLOCK_H

#include "sim/board/battery.h"
#include "sim/core/timeline.h"

namespace sim
{

class RealTimeClock : public Part
{
public:
    RealTimeClock(Timeline &timeline, Battery &battery);

    std::uint32_t now() const;
    void set(std::uint32_t seconds);

    /// The failure indication that ReadAndResetRTCFailure reports: 1 after the clock has stood still.
    void fail();
    bool failed() const { return failed_; }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void backupLost() override { fail(); }

private:
    Timeline &timeline_;
    std::uint32_t base_ = 0;
    Nanoseconds since_;
    bool failed_ = false;
};

}  // namespace sim

#endif
