// The kernel driver's half: the two ioctl protocols in front of a board.
//
// R20: one 528-byte packet, both ways (request number 0xc2108100). R20s and R35: a record of addresses in the caller's
// memory (0x8400), 28 bytes for a 32-bit caller; for a 64-bit one 56 bytes, of which the addresses and the two lengths
// have 64 bits, the pipe index and the status word 32. Pipes count from 1 in a packet and from 0 in a record.
//
// Everything returns 0 or a negative errno, as an ioctl does inside the kernel (a fault may also ask for a positive
// result):
//   ENOTTY  a request number that the model's driver does not have, the other protocol's among them
//   ENODEV  the board is unplugged, or is not the one the descriptor was opened for
//   EFAULT  a wrong pointer anywhere in the record or to it; it is noticed before the exchange, and nothing has changed
//           on the board or in the caller. The answer buffer may be null (the bytes are dropped), and for an answer
//           without bytes it may lie just behind a buffer; the count may not be null
//   EINVAL  a pipe that no board has, two different ones, or a length outside 1 to 512 (packet) or above 65536 (record)
// A board's refusal is a successful call: the status is in the packet's second byte or in the status word, and the
// record's count is 0.
#ifndef SORVANE_SIM_DRIVER_DRIVER_H
#define SORVANE_SIM_DRIVER_DRIVER_H

#include "sim/board/virtual_board.h"
#include "sim/driver/caller_memory.h"

namespace sim
{

constexpr std::uint32_t packetRequest = 0xc2108100;
constexpr std::uint32_t recordRequest = 0x8400;
constexpr std::size_t packetSize = 528;

/// Of the descriptor through which the call comes.
struct DriverCall {
    /// The board's generation when it was opened; without it, any will do.
    std::optional<std::uint64_t> generation;
    /// How a slow exchange waits, bit by bit and without the board's lock; false means that the caller is gone, and the
    /// exchange ends with EINTR before it began. Without it the board's clock passes the time.
    std::function<bool(Nanoseconds)> wait;
};

/// The packet is changed only by success.
int packetExchange(VirtualBoard &board, unsigned char *packet, const DriverCall &call = {});

int recordExchange(VirtualBoard &board, std::uint64_t recordAddress, CallerWidth width, CallerMemory &memory,
                   const DriverCall &call = {});

/// What the driver makes of any ioctl; only the low 32 bits of the request number count, as in the kernel.
int driverIoctl(VirtualBoard &board, unsigned long request, std::uint64_t argument, CallerWidth width,
                CallerMemory &memory, const DriverCall &call = {});

}  // namespace sim

#endif
