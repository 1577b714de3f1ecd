// A cabinet file to begin with.
#ifndef SORVANE_SIM_CABINET_TEMPLATE_H
#define SORVANE_SIM_CABINET_TEMPLATE_H

#include "sim/core/model.h"

#include <string>

namespace cabinet
{

/// It says what can stand in it, and is read without a mistake as it is.
std::string templateFor(sim::Model model);

}  // namespace cabinet

#endif
