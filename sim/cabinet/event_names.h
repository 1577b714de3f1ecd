// The cabinet's names for what a journal tells of.
#ifndef SORVANE_SIM_CABINET_EVENT_NAMES_H
#define SORVANE_SIM_CABINET_EVENT_NAMES_H

#include "journal/event.h"
#include "sim/cabinet/cabinet.h"

namespace cabinet
{

/// It refers to the cabinet.
journal::Names eventNames(const Cabinet &cabinet);

/// Whether it tells of this part, of a board that is the event's.
bool isAbout(const journal::Event &event, const Part &part);

}  // namespace cabinet

#endif
