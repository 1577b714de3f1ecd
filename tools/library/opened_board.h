// A board opened through the library, with the operations that need what processes share: flash patterns and the
// EEPROM's description. The library joins the shared memory as soon as it is loaded and may remove what nobody uses any
// more when it is unloaded, so it lies in a module of its own, which is loaded when a command needs it: the others
// change nothing.
#ifndef SORVANE_TOOLS_LIBRARY_OPENED_BOARD_H
#define SORVANE_TOOLS_LIBRARY_OPENED_BOARD_H

#include "api/sorvaneusb_types.h"

namespace tools
{

/// Results are those of SorvaneUSB: 1, or 0 with a code at lastError.
class OpenedBoard
{
public:
    virtual ~OpenedBoard() = default;

    virtual int setOutput(unsigned int output, unsigned int state) = 0;
    /// In one period on, in the other off.
    virtual int flashOutput(unsigned int output) = 0;
    virtual int checkEEPROM(R20EEPROM &found) = 0;
    virtual int configureEEPROM(const R20EEPROM &eeprom) = 0;
    virtual int readEEPROM(unsigned int address, unsigned char *data, unsigned int length) = 0;
    virtual int writeEEPROM(unsigned int address, unsigned char *data, unsigned int length) = 0;
    /// That of the description that all processes share; 0 without one.
    virtual unsigned int highestEEPROMAddress() = 0;
    virtual int lastError() = 0;
};

/// The module's one function: opens the board. Null: it did not open, and `code` is the library's.
using OpenBoard = OpenedBoard *(int device, int *code);
constexpr const char *openBoardName = "sorvane_open_board";

}  // namespace tools

#endif
