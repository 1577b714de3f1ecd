#include "sim/peripherals/hopper.h"

#include <algorithm>

namespace sim
{

Hopper::Hopper(Timeline &timeline, Inputs &inputs, unsigned int sensorInput)
    : timeline_(timeline), inputs_(inputs), sensorInput_(sensorInput)
{
}

Hopper &Hopper::stock(unsigned int coins)
{
    stock_ = coins;
    return *this;
}

unsigned int Hopper::stock() const
{
    timeline_.settle();
    return stock_;
}

Hopper &Hopper::rate(Nanoseconds perCoin)
{
    perCoin_ = std::max(perCoin, 2 * pulseLength);
    return *this;
}

Hopper &Hopper::jam(bool jammed)
{
    jammed_ = jammed;
    return *this;
}

void Hopper::run(std::function<bool()> driven)
{
    halt();
    driven_ = std::move(driven);
    dropNext();
}

void Hopper::halt()
{
    timeline_.cancel(this);
}

void Hopper::dropNext()
{
    timeline_.after(perCoin_, this, [this] {
        // The next drop comes first: a coin that ends the release calls it off.
        dropNext();
        if (jammed_ || stock_ == 0 || !driven_())
            return;
        --stock_;
        inputs_.pulse(sensorInput_);
    });
}

}  // namespace sim
