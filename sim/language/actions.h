// What each command does, named as in the table.
#ifndef SORVANE_SIM_LANGUAGE_ACTIONS_H
#define SORVANE_SIM_LANGUAGE_ACTIONS_H

#include "sim/language/commands.h"

namespace sim
{

// board_actions.cpp
void setInput(VirtualBoard &board, const Reading &reading);
void pulseInput(VirtualBoard &board, const Reading &reading);
Outcome insertCoin(VirtualBoard &board, const Reading &reading);
void stockHopper(VirtualBoard &board, const Reading &reading);
void jamHopper(VirtualBoard &board, const Reading &reading);
void turnSwitch(VirtualBoard &board, const Reading &reading);
void changeBattery(VirtualBoard &board, const Reading &reading);
void setClock(VirtualBoard &board, const Reading &reading);
void failClock(VirtualBoard &board, const Reading &reading);
void sendSerial(VirtualBoard &board, const Reading &reading);
void spoilParity(VirtualBoard &board, const Reading &reading);
void replySPI(VirtualBoard &board, const Reading &reading);
void unplug(VirtualBoard &board, const Reading &reading);
void plug(VirtualBoard &board, const Reading &reading);
Outcome tellState(Call &call);

// event_actions.cpp
Outcome tellEvents(Call &call);

// condition_actions.cpp
void checkWait(const Reading &reading);
void checkExpect(const Reading &reading);
Outcome waitForCondition(Call &call);
Outcome expectCondition(Call &call);

// fault_actions.cpp
void checkErrno(const Reading &reading);
void failIoctl(VirtualBoard &board, const Reading &reading);
void failStatus(VirtualBoard &board, const Reading &reading);
void failShort(VirtualBoard &board, const Reading &reading);
void failEcho(VirtualBoard &board, const Reading &reading);
void dropFaults(VirtualBoard &board, const Reading &reading);
void slowDown(VirtualBoard &board, const Reading &reading);

// memory_actions.cpp
Outcome dumpEEPROM(VirtualBoard &board, const Reading &reading);
void loadEEPROM(VirtualBoard &board, const Reading &reading);
Outcome dumpSRAM(VirtualBoard &board, const Reading &reading);
void loadSRAM(VirtualBoard &board, const Reading &reading);

}  // namespace sim

#endif
