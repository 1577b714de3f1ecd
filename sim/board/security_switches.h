// Eight security switches, watched on battery also without power; without either nobody sees them move.
//
// Which bit is which switch, and how a log ends, is the firmware's. Here bit n of the switch byte is 1 while switch n
// is open, every change is logged with the clock and the switches behind it, the log keeps the last 64, and reading
// past its end fails with a status. The flags are the switches that have opened (first byte) and closed (second) since
// they were last read and reset; the PIC and its cached copy in the 8051 are read and reset apart.
#ifndef SORVANE_SIM_BOARD_SECURITY_SWITCHES_H
#define SORVANE_SIM_BOARD_SECURITY_SWITCHES_H

#include "sim/board/real_time_clock.h"

#include <deque>

namespace sim
{

constexpr unsigned int switchCount = 8;
constexpr std::size_t switchLogCapacity = 64;

class SecuritySwitches : public Part
{
public:
    struct Event {
        std::uint32_t time;
        unsigned char switches;
    };

    SecuritySwitches(const RealTimeClock &clock, const Battery &battery) : clock_(clock), battery_(battery) {}

    /// A switch number above 7 throws std::out_of_range. Opening an open switch changes nothing.
    void open(unsigned int number = 0) { change(number, true); }
    void close(unsigned int number = 0) { change(number, false); }
    bool isOpen(unsigned int number = 0) const;
    unsigned char levels() const { return levels_; }
    const std::deque<Event> &log() const { return log_; }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override { readIndex_ = 0; }
    void backupLost() override;

private:
    struct Flags {
        unsigned char opened = 0;
        unsigned char closed = 0;
    };

    void change(unsigned int number, bool opened);
    Reply nextEvent();
    static Reply readAndReset(Flags &flags);

    const RealTimeClock &clock_;
    const Battery &battery_;
    unsigned char levels_ = 0;
    std::deque<Event> log_;
    std::size_t readIndex_ = 0;
    Flags flags_;
    Flags cachedFlags_;
};

}  // namespace sim

#endif
