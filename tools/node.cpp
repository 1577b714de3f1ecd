#include "tools/node.h"

#include "api/sorvaneusb.h"
#include "tools/failure.h"
#include "tools/trace/driver_protocol.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tools
{

namespace
{

// What the driver of an R20 takes and fills in place: request and payload behind four words, then echo, status, answer.
struct Packet {
    std::uint32_t sendPipe, receivePipe, sendLength, receiveLength;
    unsigned char data[512];
};
constexpr std::uint32_t longestPacketAnswer = 64;

// What the driver of the others takes, in the layout of the calling process.
struct Record {
    std::int32_t *status;
    std::uint32_t pipeIndex;
    const unsigned char *outData;
    unsigned long outLength;
    unsigned char *inData;
    unsigned long *inLength;
    unsigned char request;
};

Reply failed(int code)
{
    return {protocol::Outcome::Failed, code, {}};
}

int openNode(int device)
{
    const std::string path = pathOf(device);
    const int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (fd == -1)
        throw Refusal(path + ": " + std::strerror(errno), "sorvane doctor tells what is wrong with it and what to do");
    return fd;
}

protocol::Model knownModelOf(int device)
{
    const std::optional<protocol::Model> model = modelOf(device);
    if (!model)
        throw Refusal("there is no board with the device number " + std::to_string(device),
                      "sorvane list shows the boards that are there");
    return *model;
}

}  // namespace

std::string pathOf(int device)
{
    return "/dev/Vexa_" + std::to_string(device);
}

std::optional<protocol::Model> modelOf(int device)
{
    const int type = ::GetBoardType(device);
    return type == -1 ? std::nullopt : std::optional(static_cast<protocol::Model>(type));
}

bool isHighSpeed(int device)
{
    return ::LocalGetBoardSpeed(device) == 2;
}

Node::Node(int device)
    : device_(device), model_(knownModelOf(device)), highSpeed_(tools::isHighSpeed(device)), fd_(openNode(device))
{
}

Node::Node(Node &&other) noexcept
    : device_(other.device_), model_(other.model_), highSpeed_(other.highSpeed_), fd_(std::exchange(other.fd_, -1))
{
}

Node::~Node()
{
    if (fd_ != -1)
        ::close(fd_);
}

bool Node::isCharacterDevice() const
{
    struct stat status;
    return ::fstat(fd_, &status) != 0 || S_ISCHR(status.st_mode);
}

Reply Node::exchange(unsigned char request, int pipe, std::span<const unsigned char> payload)
{
    return model_ == protocol::Model::R20 ? exchangePacket(request, pipe, payload)
                                          : exchangeRecord(request, pipe, payload);
}

Reply Node::exchangePacket(unsigned char request, int pipe, std::span<const unsigned char> payload) const
{
    Packet packet = {};
    if (payload.size() > sizeof packet.data - 1)
        return failed(usbErrorLength);
    packet.sendPipe = packet.receivePipe = static_cast<std::uint32_t>(pipe);
    packet.sendLength = static_cast<std::uint32_t>(payload.size() + 1);
    packet.receiveLength = longestPacketAnswer;
    packet.data[0] = request;
    std::copy(payload.begin(), payload.end(), packet.data + 1);
    if (::ioctl(fd_, driver_protocol::packetRequest, &packet) != 0)
        return failed(usbErrorTransfer);
    if (packet.receiveLength < driver_protocol::answerHeader || packet.receiveLength > longestPacketAnswer)
        return failed(usbErrorLength);
    if (packet.data[0] != request)
        return failed(usbErrorTransfer);
    if (packet.data[1] != 0)
        return {protocol::Outcome::Refused, static_cast<signed char>(packet.data[1]), {}};
    return {protocol::Outcome::Success,
            0,
            {packet.data + driver_protocol::answerHeader, packet.data + packet.receiveLength}};
}

Reply Node::exchangeRecord(unsigned char request, int pipe, std::span<const unsigned char> payload) const
{
    std::vector<unsigned char> answer(usbLargestAnswer);
    unsigned long count = 0;
    std::int32_t status = 0;
    Record record = {
        &status, static_cast<std::uint32_t>(pipe) - 1, payload.data(), payload.size(), answer.data(), &count, request};
    if (::ioctl(fd_, driver_protocol::recordRequest, &record) != 0)
        return failed(usbErrorTransfer);
    if (status != 0)
        return {protocol::Outcome::Refused, status, {}};
    answer.resize(std::min<std::size_t>(count, answer.size()));
    return {protocol::Outcome::Success, 0, std::move(answer)};
}

}  // namespace tools
