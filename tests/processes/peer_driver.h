// What a peer tells of its boards' driver.
#ifndef SORVANE_TESTS_PROCESSES_PEER_DRIVER_H
#define SORVANE_TESTS_PROCESSES_PEER_DRIVER_H

#include "tests/support/board_calls.h"

#include <string>

namespace tests
{

std::string hex(const unsigned char *bytes, unsigned long count);
/// The bytes that a board was sent last: they show what the flash patterns hold.
std::string lastPayload();

}  // namespace tests

#endif
