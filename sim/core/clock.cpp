#include "sim/core/clock.h"

#include <thread>

namespace sim
{

void SteadyClock::pass(Nanoseconds duration)
{
    std::this_thread::sleep_for(duration);
}

}  // namespace sim
