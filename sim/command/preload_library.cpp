// The library that puts virtual boards into a program which it is loaded into. Every process of the program has boards
// of its own.
#include "sim/command/control_socket.h"
#include "sim/command/preload.h"
#include "sim/command/scenario.h"
#include "sim/inprocess/inprocess.h"
#include "sim/nodes/signals.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace
{

using namespace sim;

// The program's signals are not for the threads of the boards.
template <class Body>
void inBackground(Body body)
{
    const BlockedSignals blocked;
    std::thread(std::move(body)).detach();
}

void begin(const char *boardArguments)
{
    plugBoards(inProcessBoards(), boardsFrom(splitWords(boardArguments)));
    static Scenario scenario;
    if (const char *file = std::getenv(preloadScenario))
        scenario = Scenario::read(file);
    scenario.prepare(inProcessBoards());
    static ControlServer control(inProcessBoards(), newRunName());
    inBackground([] { control.answerAll(); });
    inBackground([] { scenario.play(inProcessBoards()); });
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
