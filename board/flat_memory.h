// Memory whose requests carry a length and a 16-bit address, low byte first: the EEPROM of every board and the SRAM of
// an R20.
#ifndef SORVANE_BOARD_FLAT_MEMORY_H
#define SORVANE_BOARD_FLAT_MEMORY_H

#include "board/requests.h"

class RBaseImplementation;

/// Reads length bytes from address on. An answer without a byte fails (6), as it would never end; what an answer has
/// too much is dropped. The chunks before a failure stay in data.
int readFlatMemory(RBaseImplementation &board, Request request, unsigned long address, unsigned char *data,
                   unsigned long length);

/// Writes in chunks of up to largestChunk bytes, at most 249.
int writeFlatMemory(RBaseImplementation &board, Request request, unsigned long largestChunk, unsigned long address,
                    const unsigned char *data, unsigned long length);

#endif
