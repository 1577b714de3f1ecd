// A device that speaks when spoken to. A frame is 0x02, the number of data bytes, the data, and the exclusive or of all
// bytes before; so its length byte has index 1 and there are 3 bytes besides the data. The answer to a frame repeats
// its first data byte with bit 7 set, and behind it whatever the device has to tell.
#ifndef SORVANE_SIM_PERIPHERALS_POLLED_DEVICE_H
#define SORVANE_SIM_PERIPHERALS_POLLED_DEVICE_H

#include "sim/peripherals/serial_peripheral.h"

#include <deque>

namespace sim
{

class PolledDevice : public SerialPeripheral
{
public:
    const char *name() const override { return "polled"; }
    void receive(const Words &words) override;

    /// What it tells in one of its next answers, at most 254 bytes.
    void say(Bytes data) { sayings_.push_back(std::move(data)); }
    void setSilent(bool silent) { silent_ = silent; }
    /// The data of the last correct frame that it heard.
    const Bytes &heard() const { return heard_; }

    static Bytes frame(Payload data);

private:
    void handle(Payload frame);

    Bytes incoming_;
    Bytes heard_;
    std::deque<Bytes> sayings_;
    bool silent_ = false;
};

}  // namespace sim

#endif
