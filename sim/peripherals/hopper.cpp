#include "sim/peripherals/hopper.h"

#include "sim/core/pattern.h"

#include <stdexcept>

namespace sim
{

namespace
{

constexpr Nanoseconds perCoin = std::chrono::milliseconds(200);

}  // namespace

Hopper &Hopper::stock(unsigned int coins)
{
    stock_ = coins;
    update();
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
    update();
    return *this;
}

Hopper &Hopper::motor(unsigned int output)
{
    if (output >= outputCount)
        throw std::out_of_range("hopper's motor");
    motor_ = output;
    update();
    return *this;
}

void Hopper::releasedBy(unsigned int output)
{
    released_ = output;
    update();
}

// A motor that flashes is looked at whenever a coin is due.
bool Hopper::drops() const
{
    return !jammed_ && stock_ > 0 && motor() && wiring_.isOnOrFlashing(*motor());
}

void Hopper::update()
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
        if (!wiring_.isOn(*motor()))
            return;
        --stock_;
        update();
        wiring_.coinPassed();
    });
}

}  // namespace sim
