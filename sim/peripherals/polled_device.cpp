#include "sim/peripherals/polled_device.h"

#include <algorithm>
#include <numeric>

namespace sim
{

namespace
{

constexpr unsigned char frameStart = 0x02;
constexpr std::size_t frameOverhead = 3;

unsigned char check(Payload bytes)
{
    return std::accumulate(bytes.begin(), bytes.end(), static_cast<unsigned char>(0),
                           [](unsigned char a, unsigned char b) { return static_cast<unsigned char>(a ^ b); });
}

}  // namespace

Bytes PolledDevice::frame(Payload data)
{
    Bytes bytes{frameStart, lowByte(static_cast<std::uint32_t>(data.size()))};
    append(bytes, data);
    bytes.push_back(check(bytes));
    return bytes;
}

void PolledDevice::handle(Payload frame)
{
    if (silent_ || check(frame) != 0)
        return;
    heard_ = toBytes(frame.subspan(2, frame[1]));
    Bytes data;
    if (!heard_.empty())
        data.push_back(heard_[0] | 0x80);
    if (!sayings_.empty()) {
        append(data, sayings_.front());
        sayings_.pop_front();
    }
    const Bytes answer = PolledDevice::frame(data);
    line_->transmit({answer.begin(), answer.end()});
}

void PolledDevice::receive(const Words &words)
{
    incoming_.insert(incoming_.end(), words.begin(), words.end());
    for (;;) {
        incoming_.erase(incoming_.begin(), std::find(incoming_.begin(), incoming_.end(), frameStart));
        if (incoming_.size() < frameOverhead || incoming_.size() < incoming_[1] + frameOverhead)
            return;
        const auto length = static_cast<std::ptrdiff_t>(incoming_[1] + frameOverhead);
        const Bytes frame(incoming_.begin(), incoming_.begin() + length);
        incoming_.erase(incoming_.begin(), incoming_.begin() + length);
        handle(frame);
    }
}

}  // namespace sim
