// The process that serves the boards of a run. It lives in the machine's own mount and process namespaces and in a
// session of its own, so that it neither sees what it serves nor hears the terminal.
#ifndef SORVANE_SIM_NODES_BOARD_PROCESS_H
#define SORVANE_SIM_NODES_BOARD_PROCESS_H

#include "sim/nodes/namespaces.h"
#include "sim/system/child_process.h"

namespace sim
{

/// Its end of the matter.
class BoardService
{
public:
    explicit BoardService(Channel channel) : channel_(std::move(channel)) {}

    /// Waits for the mounted devices; throws when the run has ended.
    MountedDevices receiveDevices();
    /// The boards answer from now on.
    void ready() { channel_.send("ready"); }
    void failed(const std::string &reason) { channel_.send(reason); }
    /// True when the program is about to start, false when the run has ended, however it did.
    bool waitForStart() { return channel_.receive().has_value(); }
    void waitForEnd();
    /// Ends the process as it stands: the threads of the file systems end with it, and whoever could unmount them waits
    /// for its end.
    [[noreturn]] void leave();

private:
    Channel channel_;
};

class BoardProcess
{
public:
    /// Started without a thread and before any namespace but a user namespace is made; `serve` ends with
    /// leave() when the run has ended.
    explicit BoardProcess(const std::function<void(BoardService &)> &serve);

    /// When it goes, the serving process cleans up and is waited for.
    ChildProcess &process() { return process_; }

    /// Hands the devices over and waits until they answer.
    void serve(MountedDevices devices);
    void programStarts() { process_.channel().send("start"); }

private:
    ChildProcess process_;
};

}  // namespace sim

#endif
