// The state of boards for a program: {"boards":[{"device":0,"model":"R35","plugged":true,...}]}.
#ifndef SORVANE_SIM_LANGUAGE_STATE_JSON_H
#define SORVANE_SIM_LANGUAGE_STATE_JSON_H

#include "sim/cabinet/cabinet.h"
#include "sim/language/state_text.h"

namespace sim
{

/// The names are those of a cabinet, empty where it has none.
std::string jsonOf(const std::vector<NumberedState> &states, const cabinet::Cabinet &cabinet);

}  // namespace sim

#endif
