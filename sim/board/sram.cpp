#include "sim/board/sram.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr std::size_t firmwareStart = firstFirmwarePage * sramPageSize;
constexpr std::size_t firmwareEnd = (lastFirmwarePage + 1) * sramPageSize;

std::size_t sizeOf(Model model)
{
    return (model == Model::R20 ? 4 : model == Model::R20s ? 33 : 65) * sramPageSize;
}

}  // namespace

SRAM::SRAM(Model model, Firmware &firmware, Diary &diary)
    : firmware_(firmware), diary_(diary), memory_(sizeOf(model)), flat_(model == Model::R20)
{
}

void SRAM::set(std::size_t address, unsigned char value)
{
    memory_.at(address) = value;
    if (isFirmware(address))
        firmware_.overwrite(address - firmwareStart, value);
}

void SRAM::write(std::size_t address, Payload bytes)
{
    diary_.noteWritten(journal::Kind::SRAM, address, Payload(memory_).subspan(address, bytes.size()), bytes);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        set(address + i, bytes[i]);
}

bool SRAM::isFirmware(std::size_t address) const
{
    return !flat_ && address >= firmwareStart && address < firmwareEnd;
}

// The program memory of an R20 is not part of this one.
void SRAM::powerLost()
{
    if (!flat_)
        std::fill(memory_.begin() + firmwareStart, memory_.begin() + firmwareEnd, static_cast<unsigned char>(0));
}

void SRAM::backupLost()
{
    std::fill(memory_.begin(), memory_.end(), static_cast<unsigned char>(0));
}

std::optional<SRAM::Range> SRAM::rangeOf(Payload payload) const
{
    if (flat_)
        return Range{u16le(payload, 1), payload[0]};
    const Range range{payload[2] * sramPageSize + u16le(payload, 3), u16le(payload, 0)};
    if (u16le(payload, 3) + range.length > sramPageSize)
        return std::nullopt;
    return range;
}

Reply SRAM::read(const Range &range) const
{
    const std::size_t most = largestAnswer(flat_ ? Model::R20 : Model::R35);
    if (range.length == 0 || range.length > most)
        return refuse(statusWrongValue);
    const auto start = memory_.begin() + static_cast<std::ptrdiff_t>(range.address);
    return tell({start, start + static_cast<std::ptrdiff_t>(range.length)});
}

Reply SRAM::write(const Range &range, Payload data)
{
    if (data.size() != range.length)
        return refuse(statusWrongLength);
    if (flat_ && firmware_.downloading())
        return perform([this, range, data] {
            for (std::size_t i = 0; i < data.size(); ++i)
                firmware_.write(range.address + i, data[i]);
        });
    const bool inFirmware = isFirmware(range.address);
    if (inFirmware && !firmware_.downloading())
        return refuse(statusProtected);
    return perform([this, range, data, inFirmware] {
        if (!inFirmware)
            diary_.noteWritten(journal::Kind::SRAM, range.address,
                               Payload(memory_).subspan(range.address, range.length), data);
        for (std::size_t i = 0; i < data.size(); ++i) {
            memory_[range.address + i] = data[i];
            if (inFirmware)
                firmware_.write(range.address + i - firmwareStart, data[i]);
        }
    });
}

std::optional<Reply> SRAM::answer(Request request, Payload payload)
{
    const bool reads = request == Request::ReadFlatSRAM || request == Request::ReadBankedSRAM;
    if (!reads && request != Request::WriteFlatSRAM && request != Request::WriteBankedSRAM)
        return std::nullopt;
    const std::optional<Range> range = rangeOf(payload);
    if (!range || range->address + range->length > memory_.size())
        return refuse(statusWrongValue);
    return reads ? read(*range) : write(*range, payload.subspan(flat_ ? 3 : 5));
}

}  // namespace sim
