// Decides how a game ends, before its reels turn: by the board's random numbers, or as a test wants it.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_OUTCOMES_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_OUTCOMES_H

#include "board_access.h"
#include "pay_table.h"

#include <vector>

namespace fruit_machine
{

class Outcomes
{
public:
    /// `wins` are those of the games to come, over and over; with none the board's random numbers decide.
    Outcomes(SorvaneUSB &board, std::vector<unsigned int> wins) : board_(board), wins_(std::move(wins)) {}

    void begin();
    /// Where the reels will stop that stand at `from`.
    Stops next(const Stops &from, const Held &held);

private:
    SorvaneUSB &board_;
    std::vector<unsigned int> wins_;
    std::size_t played_ = 0;
};

}  // namespace fruit_machine

#endif
