// The cabinet's names for what a journal tells of.
#ifndef SORVANE_SIM_CABINET_EVENT_NAMES_H
#define SORVANE_SIM_CABINET_EVENT_NAMES_H

#include "journal/event.h"
#include "sim/cabinet/cabinet.h"

namespace cabinet
{

/// It refers to the cabinet.
journal::Names eventNames(const Cabinet &cabinet);

}  // namespace cabinet

#endif
