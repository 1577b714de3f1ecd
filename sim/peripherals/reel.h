// A reel: a stepper motor that is stepped through ramps, with an index mark at one place of its turn.
#ifndef SORVANE_SIM_PERIPHERALS_REEL_H
#define SORVANE_SIM_PERIPHERALS_REEL_H

#include "sim/core/bytes.h"
#include "sim/core/clock.h"

namespace sim
{

class Reel
{
public:
    enum class Motion { Still, RampingUp, Running, RampingDown };

    /// `place` is where it happens to stand, in steps behind the index.
    explicit Reel(unsigned int place) : place_(place) {}

    void setStepsPerTurn(unsigned int steps);
    void setSynchronising(bool on);
    /// The time of each step, for the spins from the next one on; an empty ramp starts, or stops, at once.
    void setRampUp(Bytes milliseconds) { nextRampUp_ = std::move(milliseconds); }
    void setRampDown(Bytes milliseconds) { nextRampDown_ = std::move(milliseconds); }

    /// Turns by this many steps, 0 for until it is stopped.
    void spin(bool forward, unsigned int steps, Nanoseconds now);
    /// Ramps down from wherever it is.
    void stop();
    /// Carries out every step that is due.
    void runUntil(Nanoseconds now);

    Motion motion() const { return motion_; }
    bool forward() const { return forward_; }
    bool endless() const { return endless_; }
    bool synchronised() const { return synchronised_; }
    /// Where it really stands, 0 to steps per turn - 1; 0 is the index.
    unsigned int place() const { return place_; }
    /// The board's count of it: steps since power-on, or since the index passed while synchronising.
    unsigned int count() const { return count_; }
    unsigned int stepsLeft() const { return stepsLeft_; }
    /// When it comes, or came, to rest by itself; only of one that does.
    Nanoseconds restsAt() const;

private:
    Nanoseconds stepTime() const;
    Nanoseconds runTime() const;
    void step();
    void runSteps(unsigned long long steps);
    void beginRampDown();
    void rest();

    unsigned int stepsPerTurn_ = 200;
    unsigned int place_;
    unsigned int count_ = 0;
    bool synchronising_ = false;
    bool synchronised_ = false;
    Bytes nextRampUp_;
    Bytes nextRampDown_;
    Bytes rampUp_;
    Bytes rampDown_;
    Motion motion_ = Motion::Still;
    bool forward_ = true;
    bool endless_ = false;
    unsigned int stepsLeft_ = 0;
    std::size_t rampStep_ = 0;
    Nanoseconds lastStep_{};
};

}  // namespace sim

#endif
