// A hopper: a store of coins that drops one past its sensor every so often while its motor's output is on, whoever
// switched it on. As long as nobody says which output that is, it is that of the last release.
#ifndef SORVANE_SIM_PERIPHERALS_HOPPER_H
#define SORVANE_SIM_PERIPHERALS_HOPPER_H

#include "sim/board/inputs.h"
#include "sim/board/outputs.h"

namespace sim
{

class Hopper
{
public:
    Hopper(Timeline &timeline, Inputs &inputs, const Outputs &outputs, unsigned int sensorInput);
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
    void look();

private:
    bool drops() const;
    void dropNext();

    Timeline &timeline_;
    Inputs &inputs_;
    const Outputs &outputs_;
    unsigned int sensorInput_;
    std::optional<unsigned int> motor_;
    std::optional<unsigned int> released_;
    unsigned int stock_ = 0;
    bool jammed_ = false;
    bool dropping_ = false;
};

}  // namespace sim

#endif
