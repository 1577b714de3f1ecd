// The boards of a cabinet file as the words of --board, so that both are plugged in one way.
#ifndef SORVANE_SIM_LANGUAGE_CABINET_BOARDS_H
#define SORVANE_SIM_LANGUAGE_CABINET_BOARDS_H

#include "sim/cabinet/cabinet.h"
#include "sim/language/words.h"

namespace sim
{

/// An input that is active low begins at its high level: nothing is on yet.
TextWords boardArguments(const cabinet::Cabinet &cabinet);

}  // namespace sim

#endif
