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
    /// When the program is about to start, its process as a descriptor, which is empty where there is none; nothing
    /// when the run has ended, however it did.
    std::optional<OwnedFd> waitForStart();
    /// Until the program has ended, or the run has.
    void waitForEnd() { (void)channel_.receive(); }
    /// What has come out of it, for judge(); waits until it was taken.
    void tellVerdict(const std::string &verdict);
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
    /// When the program has ended: what the serving process says to it; nothing when that has ended, too.
    std::optional<std::string> judge();

private:
    ChildProcess process_;
};

}  // namespace sim

#endif
