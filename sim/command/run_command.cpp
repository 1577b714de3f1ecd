#include "sim/command/run_command.h"

#include "sim/command/background.h"
#include "sim/command/preload.h"
#include "sim/control/control_client.h"
#include "sim/control/control_server.h"
#include "sim/language/kept_memories.h"
#include "sim/language/step_player.h"
#include "sim/nodes/attributes.h"
#include "sim/nodes/board_process.h"
#include "sim/nodes/key_files.h"
#include "sim/nodes/node.h"
#include "sim/nodes/run_link.h"
#include "sim/system/failure.h"
#include "sim/system/program.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <sched.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace sim
{

namespace
{

// What the serving process says of a program that has ended.
constexpr char passed[] = "passed";
constexpr char stopped[] = "stopped";
constexpr char failed[] = "failed";

// A file that takes nothing more, on a server that is gone, does not hold up the end of a run for ever.
constexpr std::chrono::seconds longestFinish{30};

void tellUnasked(Replay &replay)
{
    const std::string unasked = replay.hasDeparted() ? "" : replay.unasked();
    if (!unasked.empty())
        std::fprintf(stderr, "sorvane-sim: %s\n", unasked.c_str());
}

// The life of the serving process, of which `run` is to hear what ends it.
void serve(BoardService &service, const RunRequest &request, const RunName &name, pid_t run)
{
    std::optional<KeyFiles> keyFiles;
    if (request.privateIpc)
        keyFiles.emplace();
    SteadyClock clock;
    VirtualBoards boards(clock);
    plugBoards(boards, request.boards);
    keepMemories(boards, request.boards);
    const auto endRun = [run] {
        if (::getppid() == run)
            ::kill(run, SIGTERM);
    };
    if (request.replay)
        request.replay->answerFor(boards, [&endRun](const std::string &departure) {
            std::fprintf(stderr, "sorvane-sim: %s\n", departure.c_str());
            endRun();
        });
    ControlServer control(boards, request.cabinet, name, request.program, endRun);
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
    OwnedFd program;
    std::optional<StepPlayer> player;
    if (!request.scenario.steps().empty())
        player.emplace(request.scenario.steps(), session, request.grace,
                       [&program](int signal) { ::syscall(SYS_pidfd_send_signal, program.get(), signal, nullptr, 0); });
    service.ready();
    std::atomic<std::size_t> reached = 0;
    if (std::optional<OwnedFd> started = service.waitForStart()) {
        program = std::move(*started);
        if (player)
            player->start();
        std::thread([&] { request.scenario.play(session, reached); }).detach();
        if (request.inBackground)
            redirectToNull(STDERR_FILENO);
        service.waitForEnd();
        request.scenario.reportUnplayed(reached);
        const Verdict verdict = player ? player->end(longestFinish) : Verdict::Passed;
        if (keeper)
            keeper->finish(longestFinish);
        if (request.replay)
            tellUnasked(*request.replay);
        endMemories(boards, request.boards);
        service.tellVerdict(verdict == Verdict::Failed ? failed : verdict == Verdict::Stopped ? stopped : passed);
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

RunName nameWithTheRightToMount(const RunRequest &request)
{
    obtainTheRightToMount();
    return newRunName(request.name);
}

// Whoever holds the other end of the input may be killed and say nothing.
void endWithInput()
{
    std::thread([] {
        std::array<char, 4096> ignored;
        ssize_t size;
        do
            size = ::read(STDIN_FILENO, ignored.data(), ignored.size());
        while (size > 0 || (size < 0 && errno == EINTR));
        ::kill(::getpid(), SIGTERM);
    }).detach();
}

// Everything that must be there before a program can meet the boards.
class RunEnvironment
{
public:
    explicit RunEnvironment(const RunRequest &request)
        : name_(nameWithTheRightToMount(request)),
          boards_([&request, this](BoardService &service) { serve(service, request, name_, run_); })
    {
        boards_.serve(mountDevices(deviceNosOf(request), name_.text()));
        learnOwnersOfNodes(deviceNosOf(request));
        if (request.privateIpc)
            permitted(::unshare(CLONE_NEWIPC), "making an IPC namespace");
    }

    const RunName &name() const { return name_; }
    BoardProcess &boards() { return boards_; }

private:
    pid_t run_ = ::getpid();
    RunName name_;
    BoardProcess boards_;
};

int runOnNodes(const RunRequest &request)
{
    const BlockedSignals blocked;
    ProcessGroupMember groupMember;
    RunEnvironment environment(request);
    const int status = runProgram(request.program, {blocked, groupMember, &environment.boards().process()});
    const std::optional<std::string> verdict = environment.boards().judge();
    if (request.replay && request.replay->hasDeparted())
        return W_EXITCODE(statusOfDeparture, 0);
    if (verdict == failed || (!verdict && !request.scenario.steps().empty()))
        return W_EXITCODE(statusOfFailedSteps, 0);
    return verdict == stopped ? 0 : status;
}

}  // namespace

void runWithBoards(const RunRequest &request)
{
    if (request.how == How::Preload)
        executePreloaded(request);
    if (request.how == How::Auto) {
        if (const std::optional<std::string> reason = whatNodesLack()) {
            if (request.replay)
                throw std::runtime_error("--replay needs device nodes: " + *reason);
            std::fprintf(stderr, "sorvane-sim: boards inside the program, for want of device nodes: %s\n",
                         reason->c_str());
            executePreloaded(request);
        }
    }
    endLike(runOnNodes(request));
}

int serveBoards(const RunRequest &request)
{
    std::optional<Background> background;
    if (request.inBackground)
        background = goToBackground();
    const BlockedSignals blocked;
    RunEnvironment environment(request);
    environment.boards().programStarts();
    const std::string &name = environment.name().shown();
    if (background) {
        background->isUp(name, request.endsWithInput);
    } else {
        std::printf("virtual boards are up; enter with: sorvane-sim enter --run %s -- PROGRAM\n", name.c_str());
        std::fflush(stdout);
    }
    if (request.endsWithInput)
        endWithInput();
    waitForEndingSignal();
    return 0;
}

void enterRun(const std::optional<std::string> &which, const TextWords &program, bool endsWithRun)
{
    const auto enter = [&] {
        const BlockedSignals blocked;
        ProcessGroupMember groupMember;
        const RunName name = chooseRun(which);
        std::optional<ControlClient> run;
        const int watched = endsWithRun ? run.emplace(name).dieWithRun() : -1;
        joinNamespacesOf(name.process());
        if (findRunFromInside() != name.text())
            throw std::runtime_error("nobody can enter the run " + name.shown() +
                                     ": its boards are inside its program, or another process namespace counts "
                                     "its id; start one to enter with: " +
                                     howToServe);
        return runProgram(program, {blocked, groupMember, nullptr, watched});
    };
    endLike(enter());
}

}  // namespace sim
