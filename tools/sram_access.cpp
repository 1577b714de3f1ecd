#include "tools/sram_access.h"

#include "tools/failure.h"
#include "tools/print.h"

#include <algorithm>
#include <cstdio>

namespace tools
{

namespace
{

using protocol::Model;

/// Where the board keeps an address: page 0 and, from page 13 on, the three pages of the firmware are not the caller's.
struct Place {
    std::uint32_t page, offset;
    std::size_t left;  ///< bytes up to the end of the page

    explicit Place(std::size_t address)
    {
        const std::size_t shifted = address + sramPageBytes;
        constexpr std::uint32_t lastBeforeFirmware = 12, firmwarePages = 3;
        page = static_cast<std::uint32_t>(shifted / sramPageBytes);
        page += page > lastBeforeFirmware ? firmwarePages : 0;
        offset = static_cast<std::uint32_t>(shifted % sramPageBytes);
        left = sramPageBytes - offset;
    }
};

}  // namespace

std::size_t sramBytes(Model model)
{
    return model == Model::R20 ? 0xFFFF : model == Model::R20s ? 0x73FFE : 0xF3FFE;
}

std::string readSRAMChunk(Board &board, std::size_t address, std::size_t wanted)
{
    std::string bytes;
    if (board.model() == Model::R20) {
        const auto length = static_cast<std::uint32_t>(std::min<std::size_t>(wanted, 58));
        bytes =
            board.ask("ReadSRAM", {{"length", length}, {"address", static_cast<std::uint32_t>(address)}}).bytes("data");
    } else {
        const Place place(address);
        const auto length = static_cast<std::uint32_t>(
            std::min({wanted, place.left, std::size_t{board.node().isHighSpeed() ? 252U : 60U}}));
        bytes =
            board.ask("ReadSRAM", {{"length", length}, {"page", place.page}, {"offset", place.offset}}).bytes("data");
    }
    if (bytes.empty())
        throw Refusal("reading the SRAM of " + board.title() + ": the board answered without data");
    bytes.resize(std::min(bytes.size(), wanted));
    return bytes;
}

std::size_t writeSRAMChunk(Board &board, std::size_t address, std::string_view bytes)
{
    const bool highSpeed = board.node().isHighSpeed();
    if (board.model() == Model::R20) {
        const auto chunk = std::string(bytes.substr(0, highSpeed ? 249 : 57));
        board.ask("WriteSRAM", {{"length", static_cast<std::uint32_t>(chunk.size())},
                                {"address", static_cast<std::uint32_t>(address)},
                                {"data", chunk}});
        return chunk.size();
    }
    const Place place(address);
    const auto chunk = std::string(bytes.substr(0, std::min<std::size_t>(place.left, highSpeed ? 247 : 55)));
    board.ask("WriteSRAM", {{"length", static_cast<std::uint32_t>(chunk.size())},
                            {"page", place.page},
                            {"offset", place.offset},
                            {"data", chunk}});
    return chunk.size();
}

std::string readSRAM(Board &board, std::size_t address, std::size_t length)
{
    std::string bytes;
    while (bytes.size() < length)
        bytes += readSRAMChunk(board, address + bytes.size(), length - bytes.size());
    return bytes;
}

void writeSRAM(Board &board, std::size_t address, std::string_view bytes)
{
    for (std::size_t done = 0; done < bytes.size();)
        done += writeSRAMChunk(board, address + done, bytes.substr(done));
}

BorrowedSRAM::BorrowedSRAM(Board &board, std::size_t address, std::size_t length)
    : board_(board), address_(address), bytes_(readSRAM(board, address, length))
{
}

BorrowedSRAM::~BorrowedSRAM()
{
    try {
        giveBack();
    } catch (const Refusal &refusal) {
        std::fprintf(stderr, "sorvane: the SRAM from address %zu could not be put back to %s: %s\n", address_,
                     hexadecimal(bytes_).c_str(), refusal.what());
    }
}

void BorrowedSRAM::giveBack()
{
    if (returned_)
        return;
    writeSRAM(board_, address_, bytes_);
    returned_ = true;  // what fails is tried once more at the end, and told
}

}  // namespace tools
