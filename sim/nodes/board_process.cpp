#include "sim/nodes/board_process.h"

#include "sim/system/failure.h"

#include <stdexcept>
#include <sys/wait.h>

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

void BoardService::waitForEnd()
{
    while (channel_.receive()) {
    }
}

void BoardService::leave()
{
    ::_exit(0);
}

BoardProcess::BoardProcess(const std::function<void(BoardService &)> &serve)
{
    auto [here, there] = Channel::pair();
    process_ = checked(::fork(), "starting a process");
    if (process_ == 0) {
        here.close();
        runBoards(std::move(there), serve);
    }
    channel_ = std::move(here);
}

void BoardProcess::serve(MountedDevices devices)
{
    channel_.send("attributes", devices.attributes.get());
    for (const auto &[deviceNo, device] : devices.nodes)
        channel_.send(std::to_string(deviceNo), device.get());
    // Nobody else holds the devices from here on: when the serving process ends, every call into them ends.
    devices = {};
    channel_.send("all");
    const std::optional<Channel::Message> answer = channel_.receive();
    if (!answer)
        throw std::runtime_error("the process that serves the boards has ended");
    if (answer->text != "ready")
        throw std::runtime_error(answer->text);
}

void BoardProcess::end()
{
    channel_.close();
    if (process_ > 0)
        ::waitpid(std::exchange(process_, -1), nullptr, 0);
}

}  // namespace sim
