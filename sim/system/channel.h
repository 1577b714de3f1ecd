// A pair of connected ends between two processes of a run. Each message is one text, with or without a descriptor; the
// end of one process is the end of file of the other, however it ended.
#ifndef SORVANE_SIM_SYSTEM_CHANNEL_H
#define SORVANE_SIM_SYSTEM_CHANNEL_H

#include "sim/system/descriptors.h"

#include <optional>
#include <string>

namespace sim
{

class Channel
{
public:
    struct Message {
        std::string text;
        OwnedFd descriptor;
    };

    Channel() = default;
    static std::pair<Channel, Channel> pair();

    /// False when the other end is gone.
    bool send(const std::string &text, int descriptor = -1);
    /// Waits; nothing when the other end is gone.
    std::optional<Message> receive();

    int fd() const { return fd_.get(); }
    void close() { fd_.reset(); }

private:
    explicit Channel(int fd) : fd_(fd) {}

    OwnedFd fd_;
};

}  // namespace sim

#endif
