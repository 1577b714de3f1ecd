// A SAS host: it polls the machine's address at 200 ms, its first word with the wake-up bit, and keeps what the machine
// answers.
#ifndef SORVANE_SIM_PERIPHERALS_SAS_HOST_H
#define SORVANE_SIM_PERIPHERALS_SAS_HOST_H

#include "sim/peripherals/serial_peripheral.h"

namespace sim
{

constexpr std::uint16_t sasWakeUp = 0x100;

class SASHost : public SerialPeripheral
{
public:
    explicit SASHost(unsigned char machineAddress = 1) : machineAddress_(machineAddress) {}
    ~SASHost() override;

    const char *name() const override { return "sas"; }
    void attach(SerialLine &line) override;
    void receive(const Words &words) override;

    void setPolling(bool polling);
    /// One poll of the machine beside the regular ones: the address with the wake-up bit, then these bytes.
    void poll(Payload bytes = {});
    const Words &answers() const { return answers_; }

private:
    void pollAgain();

    unsigned char machineAddress_;
    bool polling_ = true;
    Words answers_;
};

}  // namespace sim

#endif
