// One board's node, driven by the command itself: what is sent is what is asked for here and nothing else. It neither
// loads firmware nor configures anything, and leaves alone what processes share.
#ifndef SORVANE_TOOLS_NODE_H
#define SORVANE_TOOLS_NODE_H

#include "protocol/decode.h"

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tools
{

/// How an exchange ended.
struct Reply {
    protocol::Outcome outcome = protocol::Outcome::Success;
    int code = 0;  ///< as the library would store it: 0, or the status, or 6 or 7 for a failed exchange
    std::vector<unsigned char> bytes;
};

constexpr int devices = 16;

std::string pathOf(int device);

/// What /sys says of a device number; none without a board of a known model.
std::optional<protocol::Model> modelOf(int device);
bool isHighSpeed(int device);

class Node
{
public:
    /// Opens it for reading and writing; sends nothing. Throws Refusal.
    explicit Node(int device);
    Node(Node &&other) noexcept;
    Node(const Node &) = delete;
    Node &operator=(const Node &) = delete;
    ~Node();

    int device() const { return device_; }
    std::string path() const { return pathOf(device_); }
    protocol::Model model() const { return model_; }
    bool isHighSpeed() const { return highSpeed_; }
    /// A real board's; a virtual one is a regular file.
    bool isCharacterDevice() const;

    /// One call of the driver, never repeated.
    Reply exchange(unsigned char request, int pipe, std::span<const unsigned char> payload = {});

private:
    Reply exchangePacket(unsigned char request, int pipe, std::span<const unsigned char> payload) const;
    Reply exchangeRecord(unsigned char request, int pipe, std::span<const unsigned char> payload) const;

    int device_;
    protocol::Model model_;
    bool highSpeed_;
    int fd_;
};

}  // namespace tools

#endif
