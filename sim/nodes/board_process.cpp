#include "sim/nodes/board_process.h"

#include <stdexcept>
#include <unistd.h>

namespace sim
{

namespace
{

[[noreturn]] void runBoards(Channel channel, const std::function<void(BoardService &)> &serve)
{
    closeAllBut({channel.fd()});
    ::setsid();
    redirectToNull(0);
    redirectToNull(1);
    BoardService service(std::move(channel));
    try {
        serve(service);
    } catch (const std::exception &error) {
        service.failed(error.what());
    }
    service.leave();
}

}  // namespace

MountedDevices BoardService::receiveDevices()
{
    MountedDevices devices;
    for (;;) {
        std::optional<Channel::Message> message = channel_.receive();
        if (!message)
            throw std::runtime_error("the run has ended");
        if (message->text == "all")
            return devices;
        if (message->text == "attributes")
            devices.attributes = std::move(message->descriptor);
        else
            devices.nodes[std::stoi(message->text)] = std::move(message->descriptor);
    }
}

std::optional<OwnedFd> BoardService::waitForStart()
{
    std::optional<Channel::Message> message = channel_.receive();
    return message ? std::optional(std::move(message->descriptor)) : std::nullopt;
}

void BoardService::tellVerdict(const std::string &verdict)
{
    if (channel_.send(verdict))
        (void)channel_.receive();
}

void BoardService::leave()
{
    ::_exit(0);
}

BoardProcess::BoardProcess(const std::function<void(BoardService &)> &serve)
    : process_([&serve](Channel channel) { runBoards(std::move(channel), serve); })
{
}

void BoardProcess::serve(MountedDevices devices)
{
    Channel &channel = process_.channel();
    channel.send("attributes", devices.attributes.get());
    for (const auto &[deviceNo, device] : devices.nodes)
        channel.send(std::to_string(deviceNo), device.get());
    // Nobody else holds the devices from here on: when the serving process ends, every call into them ends.
    devices = {};
    channel.send("all");
    const std::optional<Channel::Message> answer = channel.receive();
    if (!answer)
        throw std::runtime_error("the process that serves the boards has ended");
    if (answer->text != "ready")
        throw std::runtime_error(answer->text);
}

std::optional<std::string> BoardProcess::judge()
{
    Channel &channel = process_.channel();
    if (!channel.send("ended"))
        return std::nullopt;
    std::optional<Channel::Message> answer = channel.receive();
    return answer ? std::optional(answer->text) : std::nullopt;
}

}  // namespace sim
