#include "sim/peripherals/make_peripheral.h"

#include "sim/peripherals/cctalk_acceptor.h"
#include "sim/peripherals/polled_device.h"
#include "sim/peripherals/sas_host.h"

namespace sim
{

std::unique_ptr<SerialPeripheral> makePeripheral(const std::string &name)
{
    if (name == "loopback")
        return std::make_unique<Loopback>();
    if (name == "cctalk")
        return std::make_unique<CcTalkAcceptor>();
    if (name == "polled")
        return std::make_unique<PolledDevice>();
    if (name == "sas")
        return std::make_unique<SASHost>();
    return nullptr;
}

}  // namespace sim
