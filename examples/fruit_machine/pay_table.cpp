#include "pay_table.h"

namespace fruit_machine
{

namespace
{

enum Symbol : unsigned char { Cherry, Lemon, Bell, Seven };

constexpr const char *symbolNames[] = {"cherry", "lemon", "bell", "seven"};
constexpr unsigned int pays[] = {3, 5, 10, 25};

// Each reel has three cherries, two lemons, two bells and a seven.
constexpr Symbol strips[reelCount][stopsPerTurn] = {
    {Cherry, Lemon, Bell, Cherry, Seven, Lemon, Cherry, Bell},
    {Lemon, Cherry, Bell, Lemon, Cherry, Bell, Seven, Cherry},
    {Bell, Cherry, Lemon, Cherry, Bell, Lemon, Cherry, Seven},
};

Stops numbered(unsigned int number)
{
    return {number % stopsPerTurn, number / stopsPerTurn % stopsPerTurn, number / stopsPerTurn / stopsPerTurn};
}

constexpr unsigned int allStops = stopsPerTurn * stopsPerTurn * stopsPerTurn;

bool keeps(const Stops &stops, const Stops &from, const Held &held)
{
    for (unsigned int reel = 0; reel < reelCount; ++reel)
        if (held[reel] && stops[reel] != from[reel])
            return false;
    return true;
}

}  // namespace

const char *symbolAt(unsigned int reel, unsigned int stop)
{
    return symbolNames[strips[reel][stop]];
}

unsigned int winOf(const Stops &stops)
{
    const Symbol first = strips[0][stops[0]];
    for (unsigned int reel = 1; reel < reelCount; ++reel)
        if (strips[reel][stops[reel]] != first)
            return 0;
    return pays[first];
}

bool canPay(unsigned int win)
{
    return winOf(stopsPaying(win, {}, {})) == win;
}

Stops stopsPaying(unsigned int win, const Stops &from, const Held &held)
{
    for (unsigned int number = 0; number < allStops; ++number)
        if (winOf(numbered(number)) == win && keeps(numbered(number), from, held))
            return numbered(number);
    return win == 0 ? from : stopsPaying(0, from, held);
}

}  // namespace fruit_machine
