#include "till.h"

#include <algorithm>
#include <cstdio>

namespace fruit_machine
{

namespace
{

void tellCoins(const char *name, unsigned int value, unsigned int coins, std::uint32_t &credit)
{
    for (; coins > 0; --coins) {
        credit += value;
        std::printf("coin %s value %u credit %u\n", name, value, credit);
    }
}

void tellPaid(unsigned int coins, std::uint32_t &credit)
{
    for (; coins > 0; --coins) {
        if (credit == 0)
            std::printf("coin out that nobody was owed\n");
        else
            std::printf("coin out credit %u\n", --credit);
    }
}

}  // namespace

Till::Till(SorvaneUSB &board, Ledger &ledger)
    : ledger_(ledger), coins_{{board, coinInputs[0].input}, {board, coinInputs[1].input}}, hopper_(board, hopperSensor),
      acceptor_(board)
{
}

void Till::forgetReadings()
{
    Accounts next = ledger_.now();
    next.coinsSeen[0] = next.coinsSeen[1] = next.hopperSeen = 0;
    ledger_.commit(next);
}

void Till::begin()
{
    for (PulseCounter &coin : coins_)
        coin.begin();
    hopper_.begin();
    acceptor_.begin();
}

void Till::count()
{
    Accounts next = ledger_.now();
    const unsigned int first = coins_[0].since(next.coinsSeen[0]);
    const unsigned int second = coins_[1].since(next.coinsSeen[1]);
    const unsigned int tokens = acceptor_.tokensSince(next.acceptorEventSeen);
    const unsigned int paid = hopper_.since(next.hopperSeen);
    const unsigned int value = first * coinInputs[0].value + second * coinInputs[1].value + tokens * tokenValue;
    if (value == 0 && paid == 0 && next.acceptorEventSeen == ledger_.now().acceptorEventSeen)
        return;
    std::uint32_t credit = next.credit;
    next.totalIn += value;
    next.credit += value;
    next.totalOut += paid;
    next.credit -= std::min(paid, next.credit);
    ledger_.commit(next);
    tellCoins(coinInputs[0].name, coinInputs[0].value, first, credit);
    tellCoins(coinInputs[1].name, coinInputs[1].value, second, credit);
    tellCoins("token", tokenValue, tokens, credit);
    tellPaid(paid, credit);
}

}  // namespace fruit_machine
