// A hopper: a store of coins that drops one past its sensor every so often while its motor is driven.
#ifndef SORVANE_SIM_PERIPHERALS_HOPPER_H
#define SORVANE_SIM_PERIPHERALS_HOPPER_H

#include "sim/board/inputs.h"

namespace sim
{

class Hopper
{
public:
    Hopper(Timeline &timeline, Inputs &inputs, unsigned int sensorInput);
    Hopper(const Hopper &) = delete;
    Hopper &operator=(const Hopper &) = delete;
    ~Hopper() { timeline_.cancel(this); }

    /// Fills it with this many coins.
    Hopper &stock(unsigned int coins);
    unsigned int stock() const;
    /// The time from one coin to the next, 200 ms unless told otherwise; at least the 40 ms of a sensor's pulse.
    Hopper &rate(Nanoseconds perCoin);
    /// A jammed hopper runs but drops nothing.
    Hopper &jam(bool jammed = true);
    bool jammed() const { return jammed_; }

    /// The motor's drive: it turns as long as `driven` says so when a coin is due.
    void run(std::function<bool()> driven);
    void halt();

private:
    void dropNext();

    Timeline &timeline_;
    Inputs &inputs_;
    unsigned int sensorInput_;
    unsigned int stock_ = 0;
    Nanoseconds perCoin_ = std::chrono::milliseconds(200);
    bool jammed_ = false;
    std::function<bool()> driven_;
};

}  // namespace sim

#endif
