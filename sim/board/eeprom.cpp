#include "sim/board/eeprom.h"

#include <algorithm>
#include <iterator>

namespace sim
{

namespace
{

constexpr unsigned char longestRead = 58;
constexpr unsigned char longestWrite = 57;

// Scatters addresses, so that contents at different places look different.
unsigned char contentAt(std::size_t address)
{
    return static_cast<unsigned char>((static_cast<std::uint32_t>(address) + 1) * 2654435761U >> 24);
}

}  // namespace

void EEPROM::fit(const R20EEPROM &chip)
{
    chip_ = chip;
    memory_.resize(static_cast<std::size_t>(chip.maxAddress) + 1);
    for (std::size_t i = 0; i < memory_.size(); ++i)
        memory_[i] = contentAt(i);
}

void EEPROM::blank()
{
    std::fill(memory_.begin(), memory_.end(), static_cast<unsigned char>(0xFF));
}

const char *EEPROM::name() const
{
    const auto *chip = std::find_if(std::begin(eepromChips), std::end(eepromChips), [this](const EEPROMChip &each) {
        return each.description.maxAddress == chip_.maxAddress;
    });
    return chip == std::end(eepromChips) ? "other" : chip->name;
}

int EEPROM::failure() const
{
    if (!configuration_)
        return statusNotConfigured;
    const bool acknowledged =
        configuration_->busAddress == chip_.busAddress && configuration_->addressBytes == chip_.addressBytes;
    return acknowledged ? 0 : statusNoAcknowledge;
}

Reply EEPROM::read(Payload payload)
{
    if (payload[0] == 0 || payload[0] > longestRead)
        return refuse(statusWrongValue);
    Bytes bytes(payload[0]);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = memory_[(u16le(payload, 1) + i) % memory_.size()];
    return tell(bytes);
}

void EEPROM::write(std::size_t address, Payload bytes)
{
    while (!bytes.empty()) {
        address %= memory_.size();
        const std::size_t size = std::min(bytes.size(), memory_.size() - address);
        const Payload part = bytes.first(size);
        diary_.noteWritten(journal::Kind::EEPROM, address, Payload(memory_).subspan(address, size), part);
        std::copy(part.begin(), part.end(), memory_.begin() + static_cast<std::ptrdiff_t>(address));
        address += size;
        bytes = bytes.subspan(size);
    }
}

Reply EEPROM::write(Payload payload)
{
    const Payload data = payload.subspan(3);
    if (payload[0] > longestWrite)
        return refuse(statusWrongValue);
    if (payload[0] != data.size())
        return refuse(statusWrongLength);
    return perform([this, data, address = u16le(payload, 1)] { write(address, data); });
}

std::optional<Reply> EEPROM::answer(Request request, Payload payload)
{
    if (request == Request::ConfigureEEPROM)
        return perform([this, description = R20EEPROM{payload[0], payload[1], u16be(payload, 2), payload[4], 0}] {
            configuration_ = description;
        });
    if (request != Request::ReadEEPROM && request != Request::WriteEEPROM)
        return std::nullopt;
    if (failure() != 0)
        return refuse(failure());
    return request == Request::ReadEEPROM ? read(payload) : write(payload);
}

}  // namespace sim
