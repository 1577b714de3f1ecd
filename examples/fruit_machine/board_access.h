// How the game deals with operations that fail: all in the same way, in one place.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_BOARD_ACCESS_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_BOARD_ACCESS_H

#include <sorvaneusb.h>
#include <stdexcept>
#include <string>

namespace fruit_machine
{

/// An operation failed. Whether the board has acted is unknown then, so nothing is tried again: the game lets go of the
/// board, opens it anew and takes up what the EEPROM and the board's counters say.
class BoardLost : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Throws unless an operation succeeded.
inline void must(int result, SorvaneUSB &board, const char *operation)
{
    if (result)
        return;
    const int code = board.GetLastError();
    throw BoardLost(std::string(operation) + " failed (error " + std::to_string(code) + "). " + usbErrorText(code));
}

}  // namespace fruit_machine

#endif
