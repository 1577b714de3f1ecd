// The library that puts virtual boards into a program which it is loaded into. Every process of the program has boards
// of its own.
#include "sim/control/control_socket.h"
#include "sim/control/preload_environment.h"
#include "sim/inprocess/inprocess.h"
#include "sim/journal/keeper.h"
#include "sim/language/scenario.h"
#include "sim/system/signals.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace sim;

// Never destroyed: threads use them while the program ends.
const Scenario *scenario = nullptr;
const Keeper *keeper = nullptr;
std::atomic<std::size_t> reached = 0;
// The program itself, until it has said what was not reached. The processes that it starts end for reasons of their
// own.
std::atomic<pid_t> program = 0;

// A program that ends in a signal handler may hold what is needed for its end to be told.
constexpr std::chrono::seconds longestFinish{2};

// The program's signals are not for the threads of the boards.
template <class Body>
void inBackground(Body body)
{
    const BlockedSignals blocked;
    std::thread(std::move(body)).detach();
}

// Each process has boards of its own, and a file or a summary is that of one process.
void keepJournal(bool firstProcess, const cabinet::Cabinet &machine)
{
    const char *header = std::getenv(preloadHeader);
    const char *record = std::getenv(preloadRecord);
    const Keeping keeping{std::getenv(preloadSummary) != nullptr, record ? record : "",
                          header ? journal::headerFrom(header) : journal::Header()};
    if (!keeping.anything())
        return;
    if (firstProcess)
        keeper = new Keeper(inProcessBoards(), keeping, machine);
    else
        std::fprintf(stderr,
                     "sorvane-sim: inside the program --summary and --record see the boards of one process; those of "
                     "process %d (%s) are left out; with device nodes all processes share them (--how node)\n",
                     static_cast<int>(::getpid()), program_invocation_short_name);
}

void begin(const char *boardArguments)
{
    plugBoards(inProcessBoards(), boardsFrom(splitWords(boardArguments)));
    const char *cabinetFile = std::getenv(preloadCabinet);
    static const cabinet::Cabinet &machine =
        *new cabinet::Cabinet(cabinetFile ? cabinet::Cabinet::read(cabinetFile) : cabinet::Cabinet());
    const char *file = std::getenv(preloadScenario);
    scenario = new Scenario(file ? Scenario::read(file) : Scenario());
    const char *process = std::getenv(preloadProgram);
    if (process && process == std::to_string(::getpid()))
        program = ::getpid();
    keepJournal(program != 0, machine);
    static Session session{inProcessBoards(), machine};
    scenario->prepare(session);
    static ControlServer control(inProcessBoards(), machine, newRunName());
    inBackground([] { control.answerAll(); });
    inBackground([] { scenario->play(session, reached); });
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

[[gnu::destructor]] void endWithTheProgram()
{
    pid_t self = ::getpid();
    if (!program.compare_exchange_strong(self, 0))
        return;
    scenario->reportUnplayed(reached);
    if (keeper)
        keeper->finish(longestFinish);
}

}  // namespace

// A shell ends so.
extern "C" void _exit(int status)
{
    endWithTheProgram();
    for (;;)
        ::syscall(SYS_exit_group, status);
}
