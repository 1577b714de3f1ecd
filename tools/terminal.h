// The terminal that a command is typed at, for a scope without lines and echo.
#ifndef SORVANE_TOOLS_TERMINAL_H
#define SORVANE_TOOLS_TERMINAL_H

#include <termios.h>
#include <unistd.h>

namespace tools
{

/// Ctrl-C and Ctrl-\\ still end the program; Ctrl-Z is a byte like others, since a stopped program would leave the
/// terminal like this.
class UnbufferedTerminal
{
public:
    UnbufferedTerminal() : isTerminal_(::isatty(STDIN_FILENO) && ::tcgetattr(STDIN_FILENO, &before_) == 0)
    {
        termios now = before_;
        now.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        now.c_iflag &= ~static_cast<tcflag_t>(ICRNL | IXON);
        now.c_cc[VSUSP] = _POSIX_VDISABLE;
        if (isTerminal_)
            ::tcsetattr(STDIN_FILENO, TCSANOW, &now);
    }
    ~UnbufferedTerminal()
    {
        if (isTerminal_)
            ::tcsetattr(STDIN_FILENO, TCSANOW, &before_);
    }
    UnbufferedTerminal(const UnbufferedTerminal &) = delete;
    UnbufferedTerminal &operator=(const UnbufferedTerminal &) = delete;

    explicit operator bool() const { return isTerminal_; }

private:
    termios before_ = {};
    bool isTerminal_;
};

}  // namespace tools

#endif
