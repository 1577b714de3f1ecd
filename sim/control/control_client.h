// The asking side of `ctl`.
#ifndef SORVANE_SIM_CONTROL_CONTROL_CLIENT_H
#define SORVANE_SIM_CONTROL_CONTROL_CLIENT_H

#include "sim/control/protocol.h"
#include "sim/control/run_names.h"

namespace sim
{

class ControlClient
{
public:
    /// Throws std::runtime_error when the run cannot be reached, UsageError when it is somebody else's.
    explicit ControlClient(const RunName &name);

    /// Waits for the last answer, as long as it takes. What comes before it is heard. A run that ends meanwhile is an
    /// answer with status 1.
    Outcome ask(const Request &request, const std::function<void(const std::string &text)> &hear = {});

    /// From now on the kernel kills this process when the run is gone, as long as the descriptor that is returned is
    /// open.
    int dieWithRun();

    /// Waits until the run is gone, at most so long; false when it is still there.
    bool waitForEnd(std::chrono::milliseconds most);

private:
    std::string id_;
    LineConnection connection_;
};

}  // namespace sim

#endif
