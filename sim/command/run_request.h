// What a run is to be like.
#ifndef SORVANE_SIM_COMMAND_RUN_REQUEST_H
#define SORVANE_SIM_COMMAND_RUN_REQUEST_H

#include "sim/journal/keeper.h"
#include "sim/journal/replay.h"
#include "sim/language/scenario.h"

namespace sim
{

/// How the boards reach the program.
enum class How { Node, Preload, Auto };

struct RunRequest {
    std::string name;  ///< empty: none
    std::vector<BoardOptions> boards;
    cabinet::Cabinet cabinet;
    Scenario scenario;
    bool privateIpc = true;
    How how = How::Auto;
    TextWords program;           ///< empty: programs enter
    TextWords boardArguments;    ///< as they came, for who plugs the boards elsewhere
    bool inBackground = false;   ///< of serve
    bool endsWithInput = false;  ///< of serve
    std::string scenarioFile;
    TextWords steps;  ///< that came without a file
    Nanoseconds grace = std::chrono::seconds(2);
    std::string cabinetFile;
    Keeping keeping;
    std::shared_ptr<Replay> replay;  ///< answers for the boards; null: they do it themselves
};

}  // namespace sim

#endif
