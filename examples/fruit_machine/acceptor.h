// The ccTalk acceptor on the board's serial port. The board asks it by itself; the game collects the answers.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_ACCEPTOR_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_ACCEPTOR_H

#include "board_access.h"

namespace fruit_machine
{

class Acceptor
{
public:
    explicit Acceptor(SorvaneUSB &board) : board_(board) {}

    /// Lets the board tell the acceptor again and again to take tokens only, and ask it for what it took.
    void begin();
    /// The tokens that were taken since the event `seen`, which becomes the last one.
    unsigned int tokensSince(unsigned char &seen);

private:
    SorvaneUSB &board_;
};

}  // namespace fruit_machine

#endif
