#include "sim/command/run_command.h"

#include "sim/command/preload.h"
#include "sim/control/control_socket.h"
#include "sim/nodes/attributes.h"
#include "sim/nodes/board_process.h"
#include "sim/nodes/key_files.h"
#include "sim/nodes/node.h"
#include "sim/nodes/run_link.h"
#include "sim/system/failure.h"
#include "sim/system/program.h"

#include <cstdio>
#include <sched.h>
#include <sys/wait.h>

namespace sim
{

namespace
{

// A file that takes nothing more, on a server that is gone, does not hold up the end of a run for ever.
constexpr std::chrono::seconds longestFinish{30};

// The life of the serving process.
void serve(BoardService &service, const RunRequest &request, const RunName &name)
{
    std::optional<KeyFiles> keyFiles;
    if (request.privateIpc)
        keyFiles.emplace();
    SteadyClock clock;
    VirtualBoards boards(clock);
    plugBoards(boards, request.boards);
    ControlServer control(boards, request.cabinet, name);
    Session session{boards, request.cabinet};
    MountedDevices devices = service.receiveDevices();
    Attributes attributes(boards, std::move(devices.attributes));
    std::vector<std::unique_ptr<Node>> nodes;
    for (auto &[deviceNo, device] : devices.nodes)
        nodes.push_back(std::make_unique<Node>(boards, deviceNo, std::move(device)));
    std::optional<Keeper> keeper;
    if (request.keeping.anything())
        keeper.emplace(boards, request.keeping, request.cabinet);
    request.scenario.prepare(session);
    std::thread([&control] { control.answerAll(); }).detach();
    service.ready();
    std::atomic<std::size_t> reached = 0;
    if (service.waitForStart()) {
        std::thread([&] { request.scenario.play(session, reached); }).detach();
        service.waitForEnd();
        request.scenario.reportUnplayed(reached);
        if (keeper)
            keeper->finish(longestFinish);
    }
    if (keyFiles)
        keyFiles->removeNewOnes(allRuns().size() > 1);
    service.leave();
}

std::vector<int> deviceNosOf(const RunRequest &request)
{
    std::vector<int> numbers;
    for (const BoardOptions &board : request.boards)
        numbers.push_back(board.deviceNo);
    return numbers;
}

RunName nameWithTheRightToMount()
{
    obtainTheRightToMount();
    return newRunName();
}

// Everything that must be there before a program can meet the boards.
class RunEnvironment
{
public:
    explicit RunEnvironment(const RunRequest &request)
        : name_(nameWithTheRightToMount()),
          boards_([&request, this](BoardService &service) { serve(service, request, name_); })
    {
        boards_.serve(mountDevices(deviceNosOf(request), name_.text()));
        learnOwnersOfNodes(deviceNosOf(request));
        if (request.privateIpc)
            permitted(::unshare(CLONE_NEWIPC), "making an IPC namespace");
    }

    const RunName &name() const { return name_; }
    BoardProcess &boards() { return boards_; }

private:
    RunName name_;
    BoardProcess boards_;
};

int runOnNodes(const RunRequest &request, const TextWords &program)
{
    const BlockedSignals blocked;
    ProcessGroupMember groupMember;
    RunEnvironment environment(request);
    return runProgram(program, {blocked, groupMember, &environment.boards().process()});
}

}  // namespace

How howFrom(const std::string &word)
{
    if (word != "node" && word != "preload" && word != "auto")
        refuse(word, "way", {"node", "preload", "auto"});
    return word == "node" ? How::Node : word == "preload" ? How::Preload : How::Auto;
}

void runWithBoards(const RunRequest &request, const TextWords &program)
{
    if (request.how == How::Preload)
        executePreloaded(request, program);
    if (request.how == How::Auto) {
        if (const std::optional<std::string> reason = whatNodesLack()) {
            std::fprintf(stderr, "sorvane-sim: boards inside the program, for want of device nodes: %s\n",
                         reason->c_str());
            executePreloaded(request, program);
        }
    }
    endLike(runOnNodes(request, program));
}

int serveBoards(const RunRequest &request)
{
    const BlockedSignals blocked;
    RunEnvironment environment(request);
    environment.boards().programStarts();
    std::printf("virtual boards are up; enter with: sorvane-sim enter --run %s -- PROGRAM\n",
                environment.name().id.c_str());
    std::fflush(stdout);
    waitForEndingSignal();
    return 0;
}

void enterRun(const std::optional<std::string> &id, const TextWords &program)
{
    const auto enter = [&] {
        const BlockedSignals blocked;
        ProcessGroupMember groupMember;
        const RunName name = chooseRun(id);
        joinNamespacesOf(name.process());
        if (findRunFromInside() != name.text())
            throw std::runtime_error("nobody can enter the run " + name.id +
                                     ": its boards are inside its program, or another process namespace counts "
                                     "its id; start one to enter with: " +
                                     howToServe);
        return runProgram(program, {blocked, groupMember, nullptr});
    };
    endLike(enter());
}

}  // namespace sim
