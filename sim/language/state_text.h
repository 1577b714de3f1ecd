// The state of boards for a reader.
#ifndef SORVANE_SIM_LANGUAGE_STATE_TEXT_H
#define SORVANE_SIM_LANGUAGE_STATE_TEXT_H

#include "sim/board/state.h"

namespace sim
{

struct NumberedState {
    int deviceNo;
    BoardState state;
};

std::string textOf(const std::vector<NumberedState> &states);

/// Every number of a pattern below `count`.
std::vector<unsigned int> numbersOf(const Pattern &pattern, unsigned int count);

/// The operation of an exchange, or its code where no board has such a one.
std::string nameOf(const Exchange &exchange);

}  // namespace sim

#endif
