// A run that stays when whoever started it goes on.
#ifndef SORVANE_SIM_COMMAND_BACKGROUND_H
#define SORVANE_SIM_COMMAND_BACKGROUND_H

#include "sim/system/channel.h"

namespace sim
{

/// Of the process that goes to the background: it is in a session of its own and holds none of the standard streams
/// once it is up.
class Background
{
public:
    explicit Background(Channel channel) : channel_(std::move(channel)) {}

    /// Lets the starting process print this and end with success. The input stays where it is still needed.
    void isUp(const std::string &text, bool keepsInput);

private:
    Channel channel_;
};

/// Returns in the background process. The starting one waits until it is up, prints what it says and exits; it exits
/// with the other's status when that one ends before, whose standard error tells the reason.
Background goToBackground();

}  // namespace sim

#endif
