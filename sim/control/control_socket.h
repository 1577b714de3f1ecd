// Both ends of `ctl`. A request is the words of a command, a 0 byte behind each; the answer is one byte, the exit
// status for the asking side, and a text. One exchange for each connection.
#ifndef SORVANE_SIM_CONTROL_CONTROL_SOCKET_H
#define SORVANE_SIM_CONTROL_CONTROL_SOCKET_H

#include "sim/board/virtual_boards.h"
#include "sim/cabinet/cabinet.h"
#include "sim/control/run_names.h"
#include "sim/language/words.h"
#include "sim/system/descriptors.h"

namespace sim
{

class ControlServer
{
public:
    ControlServer(VirtualBoards &boards, const cabinet::Cabinet &cabinet, const RunName &name);

    /// Answers whoever asks, for ever. An abstract socket has no permissions: only the run's own user and root are
    /// heard.
    [[noreturn]] void answerAll();

private:
    void answerOne(const OwnedFd &connection);

    VirtualBoards &boards_;
    const cabinet::Cabinet &cabinet_;
    OwnedFd socket_;
};

struct ControlAnswer {
    int status = 0;
    std::string text;
};

/// Throws std::system_error when the run cannot be reached.
ControlAnswer askRun(const RunName &name, const TextWords &words);

}  // namespace sim

#endif
