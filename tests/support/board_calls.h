// The library's calls of open, fopen and ioctl, taken over by a program that is linked with it (CMake: takes_over). The
// boards' nodes and attributes are what the program makes of them, behind every device number; other paths are passed
// on.
#ifndef SORVANE_TESTS_SUPPORT_BOARD_CALLS_H
#define SORVANE_TESTS_SUPPORT_BOARD_CALLS_H

#include <cstddef>

namespace tests
{

/// One exchange of either protocol, and what comes back. Nothing comes and nothing is written unless the program says
/// so.
struct Exchange {
    const void *call;  // as the driver gets it
    std::size_t callSize;
    unsigned char request;
    const unsigned char *sent;
    unsigned long sentLength;

    int result = 0;  // of the ioctl
    int status = 0;
    bool wrongEcho = false;   // in a packet
    unsigned int length = 0;  // bytes that are written ...
    unsigned long count = 0;  // ... and that are said to be
    unsigned char bytes[256] = {};
};

// Each program has these.

/// What a board's node is.
extern const char *const nodeFile;
/// The text of `product` or of another attribute; null: there is none.
const char *attributeText(bool product);
/// Carries it out; false when the call fails before the driver has done anything.
bool carryOut(Exchange &exchange);
/// Whether this call is to fail, with errno set.
bool callFails(const char *call);

}  // namespace tests

#endif
