// A board's SRAM as bytes from address 0, by the requests and the limits of SorvaneUSB::ReadLargeSRAM, without opening
// the board through the library.
#ifndef SORVANE_TOOLS_SRAM_ACCESS_H
#define SORVANE_TOOLS_SRAM_ACCESS_H

#include "tools/board.h"

#include <cstddef>
#include <string>

namespace tools
{

constexpr std::size_t sramPageBytes = 0x4000;

/// Bytes from address 0 that a transfer reaches: 65535, 475134 or 999422.
std::size_t sramBytes(protocol::Model model);

/// At most so many bytes as one exchange carries; at least one. Both throw Refusal.
std::string readSRAMChunk(Board &board, std::size_t address, std::size_t wanted);
/// Returns how many of the bytes were written.
std::size_t writeSRAMChunk(Board &board, std::size_t address, std::string_view bytes);

std::string readSRAM(Board &board, std::size_t address, std::size_t length);
void writeSRAM(Board &board, std::size_t address, std::string_view bytes);

/// Bytes of the SRAM that come back, however a test ends.
class BorrowedSRAM
{
public:
    BorrowedSRAM(Board &board, std::size_t address, std::size_t length);
    /// Puts back what was not put back before; a failure is told on standard error.
    ~BorrowedSRAM();
    BorrowedSRAM(const BorrowedSRAM &) = delete;
    BorrowedSRAM &operator=(const BorrowedSRAM &) = delete;

    void giveBack();
    const std::string &bytes() const { return bytes_; }

private:
    Board &board_;
    std::size_t address_;
    std::string bytes_;
    bool returned_ = false;
};

}  // namespace tools

#endif
