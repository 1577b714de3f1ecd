// The library that puts virtual boards into a program which it is loaded into. Every process of the program has boards
// of its own.
#include "sim/control/control_server.h"
#include "sim/control/preload_environment.h"
#include "sim/inprocess/inprocess.h"
#include "sim/journal/keeper.h"
#include "sim/language/kept_memories.h"
#include "sim/language/scenario.h"
#include "sim/language/step_player.h"
#include "sim/system/signals.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <signal.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace sim;

// What the threads of the boards use while the program ends, so it is never destroyed.
struct Preloaded {
    std::vector<BoardOptions> options;
    cabinet::Cabinet cabinet;
    Scenario scenario;
    Session session{inProcessBoards(), cabinet};
};

const Preloaded *preloaded = nullptr;
Keeper *keeper = nullptr;
StepPlayer *player = nullptr;
std::atomic<std::size_t> reached = 0;
// The program itself, until it has said what was not reached. The processes that it starts end for reasons of their
// own.
std::atomic<pid_t> program = 0;

// A program that ends in a signal handler may hold what is needed for its end to be told.
constexpr std::chrono::seconds longestFinish{2};

TextWords commandLine()
{
    std::ifstream file("/proc/self/cmdline");
    TextWords words;
    for (std::string word; std::getline(file, word, '\0');)
        words.push_back(word);
    return words;
}

// The program's signals are not for the threads of the boards.
template <class Body>
void inBackground(Body body)
{
    const BlockedSignals blocked;
    std::thread(std::move(body)).detach();
}

// Each process has boards of its own, and a file or a summary is that of one process.
void keepJournal(const cabinet::Cabinet &machine)
{
    const char *header = std::getenv(preloadHeader);
    const char *record = std::getenv(preloadRecord);
    const Keeping keeping{std::getenv(preloadSummary) != nullptr, record ? record : "",
                          header ? journal::headerFrom(header) : journal::Header()};
    if (!keeping.anything())
        return;
    if (program != 0)
        keeper = new Keeper(inProcessBoards(), keeping, machine);
    else
        std::fprintf(stderr,
                     "sorvane-sim: inside the program --summary and --record see the boards of one process; those of "
                     "process %d (%s) are left out; with device nodes all processes share them (--how node)\n",
                     static_cast<int>(::getpid()), program_invocation_short_name);
}

Scenario scenarioFromEnvironment()
{
    if (const char *file = std::getenv(preloadScenario))
        return Scenario::read(file);
    const char *steps = std::getenv(preloadSteps);
    return steps ? Scenario::fromSteps(splitAt(steps, '\n')) : Scenario();
}

[[noreturn]] void endProcess(int status)
{
    for (;;)
        ::syscall(SYS_exit_group, status);
}

// As the program ends by itself: what there is to tell is told, and the steps say what its end was worth, if it is not
// what the program says. Only the first who comes here ends it.
std::optional<int> endWithTheProgram()
{
    preloaded->scenario.reportUnplayed(reached);
    const Verdict verdict = player ? player->end(longestFinish) : Verdict::Passed;
    if (keeper)
        keeper->finish(longestFinish);
    endMemories(inProcessBoards(), preloaded->options);
    if (verdict == Verdict::Passed)
        return std::nullopt;
    return verdict == Verdict::Failed ? statusOfFailedSteps : 0;
}

bool isFirstToEnd()
{
    pid_t self = ::getpid();
    return program.compare_exchange_strong(self, 0);
}

// The status of a program that ends by exit, where the steps have another for it.
std::optional<int> worth;

// The tables of the language are still there.
[[gnu::destructor]] void judgeExit()
{
    if (isFirstToEnd())
        worth = endWithTheProgram();
}

// Called when all that belongs to the end of the program is over, but for what it has not written yet.
void exitWithWorth(int, void *)
{
    if (!worth)
        return;
    std::fflush(nullptr);
    endProcess(*worth);
}

// Where a signal would end the process at once, nobody could say what its end was worth. This comes from the thread of
// the steps, which goes on to their end in another.
void signalProgram(int signal)
{
    struct sigaction action {
    };
    ::sigaction(signal, nullptr, &action);
    if (signal != SIGKILL && action.sa_handler != SIG_DFL)
        ::kill(::getpid(), signal);
    else if (isFirstToEnd())
        std::thread([] { endProcess(endWithTheProgram().value_or(0)); }).detach();
}

void playSteps(const Preloaded &all)
{
    if (all.scenario.steps().empty())
        return;
    if (program == 0) {
        std::fprintf(stderr,
                     "sorvane-sim: inside the program the steps are for one process; process %d (%s) has boards of its "
                     "own; with device nodes all processes share them (--how node)\n",
                     static_cast<int>(::getpid()), program_invocation_short_name);
        return;
    }
    const char *grace = std::getenv(preloadGrace);
    player = new StepPlayer(all.scenario.steps(), const_cast<Session &>(all.session),
                            std::chrono::milliseconds(grace ? std::atol(grace) : 2000), signalProgram);
    const BlockedSignals blocked;
    player->start();
}

void begin(const char *boardArguments)
{
    const char *process = std::getenv(preloadProgram);
    const bool isProgram = process && process == std::to_string(::getpid());
    const char *cabinetFile = std::getenv(preloadCabinet);
    const char *name = isProgram ? std::getenv(preloadName) : nullptr;
    auto *all = new Preloaded{boardsFrom(splitWords(boardArguments)),
                              cabinetFile ? cabinet::Cabinet::read(cabinetFile) : cabinet::Cabinet(),
                              scenarioFromEnvironment()};
    plugBoards(inProcessBoards(), all->options);
    if (isProgram)
        keepMemories(inProcessBoards(), all->options);
    auto *control = new ControlServer(inProcessBoards(), all->cabinet, newRunName(name ? name : ""), commandLine(),
                                      [] { ::kill(::getpid(), SIGTERM); });
    preloaded = all;
    if (isProgram)
        program = ::getpid();
    keepJournal(all->cabinet);
    all->scenario.prepare(all->session);
    playSteps(*all);
    ::on_exit(exitWithWorth, nullptr);
    inBackground([control] { control->answerAll(); });
    inBackground([all] { all->scenario.play(all->session, reached); });
}

[[gnu::constructor]] void beginWithTheProgram()
{
    const char *boardArguments = std::getenv(preloadBoards);
    // Whoever controls boards has none of its own.
    if (!boardArguments || std::strcmp(program_invocation_short_name, "sorvane-sim") == 0)
        return;
    try {
        begin(boardArguments);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "sorvane-sim: %s\n", error.what());
    }
}

}  // namespace

// A shell ends so.
extern "C" void _exit(int status)
{
    if (isFirstToEnd())
        status = endWithTheProgram().value_or(status);
    endProcess(status);
}
