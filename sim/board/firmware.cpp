#include "sim/board/firmware.h"

#include <algorithm>

namespace sim
{

Firmware::Firmware(Model model) : image_(firmwareLength(model)), written_(image_.size()) {}

void Firmware::begin()
{
    running_ = false;
    downloading_ = true;
    std::fill(written_.begin(), written_.end(), false);
}

void Firmware::write(std::size_t address, unsigned char value)
{
    if (!downloading_ || address >= image_.size())
        return;
    image_[address] = value;
    written_[address] = true;
}

void Firmware::overwrite(std::size_t address, unsigned char value)
{
    if (address < image_.size())
        image_[address] = value;
}

bool Firmware::complete() const
{
    return downloading_ && std::find(written_.begin(), written_.end(), false) == written_.end();
}

std::optional<Reply> Firmware::answer(Request request, Payload)
{
    switch (request) {
    case Request::FirmwareRuns:
        return tell({lowByte(running_ ? 1 : 0)});
    case Request::BeginFirmware:
        return perform([this] { begin(); });
    case Request::EndFirmware:
        if (!complete())
            return refuse(statusIncompleteFirmware);
        return perform([this] {
            downloading_ = false;
            running_ = true;
        });
    default:
        return std::nullopt;
    }
}

void Firmware::powerLost()
{
    running_ = false;
    downloading_ = false;
    std::fill(image_.begin(), image_.end(), static_cast<unsigned char>(0));
    std::fill(written_.begin(), written_.end(), false);
}

}  // namespace sim
