// A driver that answers whatever the fuzzer likes, behind every device number.
//
// It keeps only to what every driver must: it writes at most 256 bytes into an answer's buffer and stays inside its
// own packet. What it says about them (count, status, echo, result) may be anything.
#ifndef SORVANE_TESTS_FUZZ_FUZZ_DRIVER_H
#define SORVANE_TESTS_FUZZ_FUZZ_DRIVER_H

#include "tests/fuzz/fuzz_input.h"

#include <sorvaneusb.h>

namespace fuzz
{

struct Driver {
    Input *input = nullptr;
    unsigned int model = 1;  // as GetBoardType tells it; any other number has no text that the library knows
    unsigned int speed = 1;
    /// Counts are those of the bytes that were written, where an operation's buffer has no stated size.
    bool truthful = false;
    /// After so many answers of data none follows, where an operation would go on for ever otherwise.
    unsigned int answersLeft = ~0U;
    /// Answers of no more bytes are not counted by it: they carry none of the data that is waited for.
    unsigned int bytesWithoutData = 0;
    /// When the input has ended every answer has so many bytes, each 1: "more follows" for whoever asks for parts.
    unsigned int endlessBytes = 0;

    unsigned int exchanges = 0;
    unsigned long sentBytes = 0;  // by the last exchange
};

extern Driver driver;

/// A board of the driver, opened, its shared tables as they are in a new arena. Whether it became ready is up to the
/// answers; it is open in any case.
void openBoard(SorvaneUSB &board, int deviceNo);

}  // namespace fuzz

#endif
