// The bounds of a memory transfer.
#ifndef SORVANE_BOARD_TRANSFER_RANGE_H
#define SORVANE_BOARD_TRANSFER_RANGE_H

/// Whether address and address + length are both at most limit, for any values: no sum that could wrap is formed.
constexpr bool withinLimit(unsigned long address, unsigned long length, unsigned long limit)
{
    return address <= limit && length <= limit - address;
}

/// The part of a received chunk that a caller's buffer with room bytes left takes.
constexpr unsigned long fitting(unsigned long received, unsigned long room)
{
    return received < room ? received : room;
}

#endif
