// The machine's money in the EEPROM.
//
// Everything that belongs together is one record, and a change of it is written before it is believed. There are two
// places for the record, each within a page of the chip, and they take turns: a write that the power cuts off hurts
// only the place with the older record. The newer one whose checksum is right holds, so what was counted stays counted.
// The record also remembers how far the board's counters and the acceptor's were read. A coin is therefore in the
// record, or still in a counter, and never in both. Lost are only pulses that the board had counted since the last
// look, a few hundredths of a second, when its own power went.
//
// The meters that a technician reads are a copy of three numbers of the record, renewed behind it.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_LEDGER_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_LEDGER_H

#include "board_access.h"

#include <cstdint>

namespace fruit_machine
{

struct Accounts {
    std::uint32_t totalIn = 0;            ///< credits bought, ever
    std::uint32_t totalOut = 0;           ///< coins paid, ever
    std::uint32_t games = 0;              ///< games bought, ever
    std::uint32_t credit = 0;             ///< what the machine owes the player
    std::uint32_t openWin = 0;            ///< of the game that is being played: decided, not yet credited
    unsigned char coinsSeen[2] = {};      ///< last readings of the coin inputs' counters
    unsigned char hopperSeen = 0;         ///< and of the hopper's
    unsigned char acceptorEventSeen = 0;  ///< last event of the ccTalk acceptor
};

class Ledger
{
public:
    explicit Ledger(SorvaneUSB &board) : board_(board) {}

    /// Finds the record; false when there is none, as in a new chip: then all begins at 0.
    bool load();
    const Accounts &now() const { return accounts_; }
    /// Makes these the accounts.
    void commit(const Accounts &next);

private:
    bool read(unsigned int place);
    void writeMeters();

    SorvaneUSB &board_;
    Accounts accounts_;
    std::uint32_t sequence_ = 0;
};

}  // namespace fruit_machine

#endif
