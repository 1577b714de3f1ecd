#include "sim/peripherals/hopper.h"

#include <stdexcept>

namespace sim
{

namespace
{

constexpr Nanoseconds perCoin = std::chrono::milliseconds(200);

}  // namespace

Hopper::Hopper(Timeline &timeline, Inputs &inputs, const Outputs &outputs, unsigned int sensorInput)
    : timeline_(timeline), inputs_(inputs), outputs_(outputs), sensorInput_(sensorInput)
{
}

Hopper &Hopper::stock(unsigned int coins)
{
    stock_ = coins;
    look();
    return *this;
}

unsigned int Hopper::stock() const
{
    timeline_.settle();
    return stock_;
}

Hopper &Hopper::jam(bool jammed)
{
    jammed_ = jammed;
    look();
    return *this;
}

Hopper &Hopper::motor(unsigned int output)
{
    if (output >= outputCount)
        throw std::out_of_range("hopper's motor");
    motor_ = output;
    look();
    return *this;
}

void Hopper::releasedBy(unsigned int output)
{
    released_ = output;
    look();
}

// A motor that flashes is looked at whenever a coin is due.
bool Hopper::drops() const
{
    return !jammed_ && stock_ > 0 && motor() && outputs_.litOrFlashing(*motor());
}

void Hopper::look()
{
    if (drops() == dropping_)
        return;
    dropping_ = !dropping_;
    if (dropping_)
        dropNext();
    else
        timeline_.cancel(this);
}

void Hopper::dropNext()
{
    timeline_.after(perCoin, this, [this] {
        // The next drop comes first: a coin that ends the release calls it off.
        dropNext();
        if (!outputs_.lit(*motor()))
            return;
        --stock_;
        look();
        inputs_.pulse(sensorInput_);
    });
}

}  // namespace sim
