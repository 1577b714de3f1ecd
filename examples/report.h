// How the examples tell of a failure: the operation, the library's code, and what to try.
#ifndef SORVANE_EXAMPLES_REPORT_H
#define SORVANE_EXAMPLES_REPORT_H

#include <cstdio>
#include <sorvaneusb.h>

/// Passes a result on; says what went wrong when it is a failure.
inline bool succeeded(int result, SorvaneUSB &board, const char *operation)
{
    if (!result) {
        const int code = board.GetLastError();
        std::fprintf(stderr, "%s failed (error %d). %s\n", operation, code, usbErrorText(code));
    }
    return result != 0;
}

#endif
