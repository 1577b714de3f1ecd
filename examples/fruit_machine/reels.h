// The three reels, turned with ramps from stop to stop.
//
// The board counts the steps of each reel since its index mark passed by, once it has found the mark after its power
// came. That it has not is therefore also the sign that the board lost its power.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_REELS_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_REELS_H

#include "board_access.h"
#include "pay_table.h"

#include <chrono>

namespace fruit_machine
{

class Reels
{
public:
    explicit Reels(SorvaneUSB &board) : board_(board) {}

    /// Brings the reels to rest and sets the drive up.
    void begin();
    /// Whether every reel has found its index mark since the board's power came.
    bool synchronised();
    /// Turns each reel once, so that it finds its mark. Throws if one does not.
    void synchronise();

    /// Turns those that are not held, one stopping after the other.
    void spin(const Stops &to, const Held &held);
    bool still();
    /// Still turning although the longest spin must be over.
    bool overdue() const { return std::chrono::steady_clock::now() > due_; }
    /// Whether a reel stands exactly at a stop.
    bool standsAt(unsigned int reel, unsigned int stop);
    /// Lets the reels ramp down wherever they are.
    void stop();

private:
    ReelStatusEx status();
    void loadRamps(unsigned char reel);
    void waitUntilStill();

    SorvaneUSB &board_;
    std::chrono::steady_clock::time_point due_{};
};

}  // namespace fruit_machine

#endif
