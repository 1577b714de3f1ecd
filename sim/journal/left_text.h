// How a board was left, in a few lines for people: what stands out, by the names of the cabinet.
#ifndef SORVANE_SIM_JOURNAL_LEFT_TEXT_H
#define SORVANE_SIM_JOURNAL_LEFT_TEXT_H

#include "sim/board/virtual_board.h"
#include "sim/cabinet/cabinet.h"

namespace sim
{

/// Called with the board's lock held.
std::string leftText(VirtualBoard &board, int deviceNo, const cabinet::Cabinet &cabinet);

/// What the EEPROM holds for a meter.
std::uint64_t meterValue(VirtualBoard &board, const cabinet::Part &meter);

}  // namespace sim

#endif
