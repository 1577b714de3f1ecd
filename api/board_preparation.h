// The last step of opening a board.
#ifndef SORVANE_API_BOARD_PREPARATION_H
#define SORVANE_API_BOARD_PREPARATION_H

class RBaseImplementation;

/// Makes the firmware of a freshly opened board run and, the first time on this machine, tells it the type of the
/// EEPROM that it carries. The board stays open when that fails.
int prepareBoard(RBaseImplementation &implementation, int deviceNo);

/// Asks whether the firmware runs, and loads it only where it does not. Hold the board's PreparationLock.
int makeFirmwareRun(RBaseImplementation &implementation);

#endif
