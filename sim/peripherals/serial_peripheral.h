// What hangs at the other end of a serial port.
#ifndef SORVANE_SIM_PERIPHERALS_SERIAL_PERIPHERAL_H
#define SORVANE_SIM_PERIPHERALS_SERIAL_PERIPHERAL_H

#include "sim/board/bytes.h"
#include "sim/board/timeline.h"
#include "sim/peripherals/peripheral_names.h"

#include <memory>

namespace sim
{

/// The line as its peripheral sees it.
class SerialLine
{
public:
    virtual ~SerialLine() = default;

    /// Sends words towards the board, one behind the other at the line's speed.
    virtual void transmit(const Words &words) = 0;
    virtual Timeline &timeline() = 0;
};

class SerialPeripheral
{
public:
    SerialPeripheral() = default;
    SerialPeripheral(const SerialPeripheral &) = delete;
    SerialPeripheral &operator=(const SerialPeripheral &) = delete;
    virtual ~SerialPeripheral() = default;

    virtual const char *name() const = 0;

    /// Called once, when it is plugged in; the line outlives the peripheral.
    virtual void attach(SerialLine &line) { line_ = &line; }

    /// Words from the board, whole as they were sent; the last of them has just arrived. It may transmit at once.
    virtual void receive(const Words &words) = 0;

protected:
    SerialLine *line_ = nullptr;
};

/// A peripheral by one of the names; null for any other.
std::unique_ptr<SerialPeripheral> makePeripheral(const std::string &name);

/// Sends everything back.
class Loopback : public SerialPeripheral
{
public:
    const char *name() const override { return "loopback"; }
    void receive(const Words &words) override { line_->transmit(words); }
};

}  // namespace sim

#endif
