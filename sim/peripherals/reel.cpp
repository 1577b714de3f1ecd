#include "sim/peripherals/reel.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr unsigned int usualStepsPerTurn = 200;
constexpr Nanoseconds rampUnit = std::chrono::milliseconds(1);
constexpr Nanoseconds usualStepTime = std::chrono::milliseconds(4);

Nanoseconds timeOf(unsigned char entry)
{
    return std::max(entry * rampUnit, rampUnit);
}

}  // namespace

void Reel::setStepsPerTurn(unsigned int steps)
{
    stepsPerTurn_ = steps == 0 ? usualStepsPerTurn : steps;
    place_ %= stepsPerTurn_;
}

void Reel::setSynchronising(bool on)
{
    synchronising_ = on;
    synchronised_ = synchronised_ && on;
}

void Reel::spin(bool forward, unsigned int steps, Nanoseconds now)
{
    rampUp_ = nextRampUp_;
    rampDown_ = nextRampDown_;
    forward_ = forward;
    endless_ = steps == 0;
    stepsLeft_ = steps;
    rampStep_ = 0;
    lastStep_ = now;
    motion_ = rampUp_.empty() ? Motion::Running : Motion::RampingUp;
    if (motion_ == Motion::Running && !endless_ && stepsLeft_ <= rampDown_.size())
        beginRampDown();
}

void Reel::stop()
{
    if (motion_ == Motion::Still || motion_ == Motion::RampingDown)
        return;
    const auto ramp = static_cast<unsigned int>(rampDown_.size());
    stepsLeft_ = endless_ ? ramp : std::min(stepsLeft_, ramp);
    endless_ = false;
    beginRampDown();
}

// Only the end of the ramp is used when fewer steps are left than it has.
void Reel::beginRampDown()
{
    motion_ = Motion::RampingDown;
    rampStep_ = rampDown_.size() - stepsLeft_;
    if (stepsLeft_ == 0)
        rest();
}

void Reel::rest()
{
    motion_ = Motion::Still;
    stepsLeft_ = 0;
    endless_ = false;
}

Nanoseconds Reel::runTime() const
{
    return rampUp_.empty() ? usualStepTime : timeOf(rampUp_.back());
}

Nanoseconds Reel::stepTime() const
{
    return timeOf(motion_ == Motion::RampingUp ? rampUp_[rampStep_] : rampDown_[rampStep_]);
}

void Reel::runSteps(unsigned long long steps)
{
    const unsigned int toIndex = forward_ ? stepsPerTurn_ - place_ : place_ == 0 ? stepsPerTurn_ : place_;
    if (synchronising_ && steps >= toIndex) {
        synchronised_ = true;
        count_ = static_cast<unsigned int>((steps - toIndex) % stepsPerTurn_);
    } else {
        count_ += static_cast<unsigned int>(steps);
    }
    const auto partOfTurn = static_cast<unsigned int>(steps % stepsPerTurn_);
    place_ = (place_ + (forward_ ? partOfTurn : stepsPerTurn_ - partOfTurn)) % stepsPerTurn_;
    if (!endless_)
        stepsLeft_ -= static_cast<unsigned int>(steps);
}

void Reel::step()
{
    runSteps(1);
    ++rampStep_;
    if (motion_ == Motion::RampingDown) {
        if (stepsLeft_ == 0)
            rest();
    } else if (!endless_ && stepsLeft_ <= rampDown_.size()) {
        beginRampDown();
    } else if (rampStep_ == rampUp_.size()) {
        motion_ = Motion::Running;
    }
}

void Reel::runUntil(Nanoseconds now)
{
    while (motion_ != Motion::Still) {
        if (motion_ != Motion::Running) {
            if (lastStep_ + stepTime() > now)
                return;
            lastStep_ += stepTime();
            step();
            continue;
        }
        const auto due = static_cast<unsigned long long>((now - lastStep_) / runTime());
        const auto steps = endless_ ? due : std::min<unsigned long long>(due, stepsLeft_ - rampDown_.size());
        if (steps == 0)
            return;
        lastStep_ += steps * runTime();
        runSteps(steps);
        if (!endless_ && stepsLeft_ <= rampDown_.size())
            beginRampDown();
    }
}

Nanoseconds Reel::restsAt() const
{
    Reel ahead = *this;
    ahead.runUntil(Nanoseconds::max());
    return ahead.lastStep_;
}

}  // namespace sim
