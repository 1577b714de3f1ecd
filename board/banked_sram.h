// The SRAM of R20s and R35: pages of 16 KiB, three of which hold the board's firmware.
//
// A caller's address 0 lies at page 1. Once the firmware runs, pages 13 to 15 are its own, and what would lie in page
// 13 and above is moved up by three pages. Until then a write is a part of the firmware image: address 0 lies at
// page 13.
#ifndef SORVANE_BOARD_BANKED_SRAM_H
#define SORVANE_BOARD_BANKED_SRAM_H

class RBaseImplementation;

/// Writes length bytes from address on; limit bounds address and their sum (error 8), then data must not be null (30).
int writeBankedSRAM(RBaseImplementation &board, unsigned long limit, unsigned long address, const unsigned char *data,
                    unsigned int length);

/// Reads as the board would after its firmware runs, whether it does or not. The checks are those of a write.
int readBankedSRAM(RBaseImplementation &board, unsigned long limit, unsigned long address, unsigned char *data,
                   unsigned long length);

#endif
