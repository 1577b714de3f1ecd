#include "sim/command/preload.h"

#include <stdexcept>

namespace sim
{

void executePreloaded(const RunRequest &, const TextWords &)
{
    throw std::runtime_error("not yet");
}

}  // namespace sim
