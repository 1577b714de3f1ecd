// The run's side of `ctl`.
#ifndef SORVANE_SIM_CONTROL_CONTROL_SERVER_H
#define SORVANE_SIM_CONTROL_CONTROL_SERVER_H

#include "sim/control/protocol.h"
#include "sim/control/run_names.h"

#include <atomic>

namespace sim
{

class ControlServer
{
public:
    /// Boards and cabinet outlive it. Of the run it tells what is plugged now and `program`, which is empty where
    /// programs come and go; `stop` begins the run's end.
    ControlServer(VirtualBoards &boards, const cabinet::Cabinet &cabinet, const RunName &name, const TextWords &program,
                  std::function<void()> stop);

    /// Answers whoever asks, for ever, each in a thread of its own: who waits for something keeps nobody else waiting.
    /// An abstract socket has no permissions: only the run's own user and root are heard.
    [[noreturn]] void answerAll();

private:
    void answer(OwnedFd connection);
    void answerAllOf(LineConnection &connection);
    Outcome carryOut(const Request &request, LineConnection &connection);

    VirtualBoards &boards_;
    const cabinet::Cabinet &cabinet_;
    std::string about_;
    std::function<void()> stop_;
    OwnedFd socket_;
    OwnedFd nameGuard_;
    std::atomic<int> connections_ = 0;
};

}  // namespace sim

#endif
