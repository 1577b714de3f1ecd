// The state of boards for a program: {"boards":[{"device":0,"model":"R35","plugged":true,...}]}.
#ifndef SORVANE_SIM_LANGUAGE_STATE_JSON_H
#define SORVANE_SIM_LANGUAGE_STATE_JSON_H

#include "sim/language/state_text.h"

namespace sim
{

std::string jsonOf(const std::vector<NumberedState> &states);

}  // namespace sim

#endif
