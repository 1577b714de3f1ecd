#include "outcomes.h"

#include <random>

namespace fruit_machine
{

void Outcomes::begin()
{
    must(board_.EnableRandomNumberGenerator(std::random_device{}()), board_, "EnableRandomNumberGenerator");
}

Stops Outcomes::next(const Stops &from, const Held &held)
{
    if (!wins_.empty())
        return stopsPaying(wins_[played_++ % wins_.size()], from, held);
    static_assert(65536 % stopsPerTurn == 0, "the remainder would favour some stops");
    Stops stops = from;
    for (unsigned int reel = 0; reel < reelCount; ++reel) {
        unsigned short number = 0;
        must(board_.GetRandomNumber(&number), board_, "GetRandomNumber");
        if (!held[reel])
            stops[reel] = number % stopsPerTurn;
    }
    return stops;
}

}  // namespace fruit_machine
