// A process namespace with its first process. When that one goes, the kernel ends every other, whatever became of it.
#ifndef SORVANE_SIM_SYSTEM_PROCESS_NAMESPACE_H
#define SORVANE_SIM_SYSTEM_PROCESS_NAMESPACE_H

#include "sim/system/child_process.h"

#include <optional>

namespace sim
{

class ProcessNamespace
{
public:
    /// Children of this process live in it from now on. This process must have a mount namespace of its own, into which
    /// the new /proc goes; where that is not allowed, the machine's stays. No thread can be started afterwards.
    ProcessNamespace();
    ProcessNamespace(const ProcessNamespace &) = delete;
    ProcessNamespace &operator=(const ProcessNamespace &) = delete;
    /// Ends every process in it and waits until they are gone; children of this process are reaped.
    ~ProcessNamespace();

    int channel() const { return first_->channel().fd(); }

private:
    std::optional<ChildProcess> first_;
};

}  // namespace sim

#endif
