// Counts the money that comes in and goes out, where it passes: at the coin inputs, in the acceptor, at the hopper's
// sensor. Nothing else adds a coin to the accounts or takes one off.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_TILL_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_TILL_H

#include "acceptor.h"
#include "ledger.h"
#include "pulse_counter.h"

namespace fruit_machine
{

class Till
{
public:
    Till(SorvaneUSB &board, Ledger &ledger);

    /// The board has lost its power: its counters begin at 0 again.
    void forgetReadings();
    void begin();
    /// Enters what has passed since it was last called, then tells of it, a line a coin.
    void count();

private:
    Ledger &ledger_;
    PulseCounter coins_[2];
    PulseCounter hopper_;
    Acceptor acceptor_;
};

}  // namespace fruit_machine

#endif
