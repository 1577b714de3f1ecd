// What can be learnt of a board without changing anything: request 74 alone where the firmware does not run, and
// otherwise 6, 44, 63, 75 and, not on an R20, 120.
#ifndef SORVANE_TOOLS_PROBE_H
#define SORVANE_TOOLS_PROBE_H

#include "tools/board.h"

#include <optional>
#include <string>

namespace tools
{

struct Probe {
    bool firmwareRuns = false;
    std::optional<std::string> version;  ///< as bytes
    std::optional<std::string> picVersion;
    std::optional<std::string> picSerial;
    std::optional<std::string> dallasSerial;  ///< 8 bytes; not on an R20
    std::optional<unsigned int> boardNumber;
    std::string trouble;  ///< of the first exchange that failed or was refused; empty: none
};

Probe probe(Board &board);

/// Whether byte 7 is the 1-Wire check byte of the others.
bool isCheckByteRight(std::string_view dallasSerial);

}  // namespace tools

#endif
