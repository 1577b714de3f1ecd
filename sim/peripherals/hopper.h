// A hopper: a store of coins that drops one past its sensor every so often while its motor's output is on, whoever
// switched it on. As long as nobody says which output that is, it is that of the last release.
#ifndef SORVANE_SIM_PERIPHERALS_HOPPER_H
#define SORVANE_SIM_PERIPHERALS_HOPPER_H

#include "sim/core/timeline.h"

#include <optional>

namespace sim
{

/// How a hopper is connected to its board.
struct HopperWiring {
    std::function<bool(unsigned int output)> isOn;            ///< at this moment
    std::function<bool(unsigned int output)> isOnOrFlashing;  ///< or goes on in the other flash period
    std::function<void()> coinPassed;                         ///< a coin is at the sensor
};

class Hopper
{
public:
    Hopper(Timeline &timeline, HopperWiring wiring) : timeline_(timeline), wiring_(std::move(wiring)) {}
    Hopper(const Hopper &) = delete;
    Hopper &operator=(const Hopper &) = delete;
    ~Hopper() { timeline_.cancel(this); }

    /// Fills it with this many coins.
    Hopper &stock(unsigned int coins);
    unsigned int stock() const;
    /// A jammed hopper runs but drops nothing.
    Hopper &jam(bool jammed = true);
    bool jammed() const { return jammed_; }

    /// Says which output its motor hangs on; above 37 throws std::out_of_range.
    Hopper &motor(unsigned int output);
    std::optional<unsigned int> motor() const { return motor_ ? motor_ : released_; }

    /// A release asks for this output.
    void releasedBy(unsigned int output);
    /// An output may have been switched.
    void update();

private:
    bool drops() const;
    void dropNext();

    Timeline &timeline_;
    HopperWiring wiring_;
    std::optional<unsigned int> motor_;
    std::optional<unsigned int> released_;
    unsigned int stock_ = 0;
    bool jammed_ = false;
    bool dropping_ = false;
};

}  // namespace sim

#endif
