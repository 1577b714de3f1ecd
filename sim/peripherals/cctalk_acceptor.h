// A ccTalk coin acceptor at address 2. It accepts every coin until it is told otherwise, and does not echo the host's
// own bytes, as a single-wire bus would.
#ifndef SORVANE_SIM_PERIPHERALS_CCTALK_ACCEPTOR_H
#define SORVANE_SIM_PERIPHERALS_CCTALK_ACCEPTOR_H

#include "sim/peripherals/serial_peripheral.h"

#include <deque>
#include <optional>

namespace sim
{

class CcTalkAcceptor : public SerialPeripheral
{
public:
    const char *name() const override { return "cctalk"; }
    void receive(const Words &words) override;

    /// A coin of type 1 to 16 is thrown in; false when it is rejected because its type is inhibited.
    bool insert(unsigned int coin);
    /// A silent acceptor answers nothing, as if its plug was pulled.
    void setSilent(bool silent) { silent_ = silent; }
    unsigned int events() const { return events_; }

private:
    std::optional<Bytes> dataFor(unsigned char header, Payload data);
    Bytes credit() const;
    void handle(Payload frame);

    Bytes incoming_;
    Nanoseconds lastHeard_{};
    bool silent_ = false;
    bool masterEnabled_ = true;
    unsigned int enabledCoins_ = 0xFFFF;
    unsigned char events_ = 0;
    std::deque<unsigned char> credits_;  // the newest first, at most five
};

}  // namespace sim

#endif
