// A serial port of a board as a line on which bytes go both ways.
#ifndef SORVANE_TOOLS_SERIAL_LINE_H
#define SORVANE_TOOLS_SERIAL_LINE_H

#include "tools/board.h"

#include <string>

namespace tools
{

/// How a port is set, in the numbers that travel (docs/wire.md, SetConfig): "9600", "9600,0,0,0,0".
struct LineFormat {
    std::uint32_t baudRate = 9600, type = 0, format = 0, options2to3 = 0, option1 = 0;

    /// Throws UsageError with what is allowed on the port.
    static LineFormat from(const std::string &word, const Board &board, int port);
};

class SerialLine
{
public:
    SerialLine(Board &board, int port) : board_(board), port_(port) {}

    void configure(const LineFormat &format);
    void send(std::string_view bytes);
    /// What the board holds; at most a few answers' worth, so that the caller gets to other things.
    std::string receive();
    /// A batch of bytes with the board's timestamps in between, as the board hands it over.
    std::string receiveBatch();

private:
    Board &board_;
    int port_;
    unsigned char messageId_ = 0;
};

}  // namespace tools

#endif
