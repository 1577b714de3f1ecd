// What the preloaded library finds in its environment.
#ifndef SORVANE_SIM_CONTROL_PRELOAD_ENVIRONMENT_H
#define SORVANE_SIM_CONTROL_PRELOAD_ENVIRONMENT_H

namespace sim
{

constexpr char preloadBoards[] = "SORVANE_SIM_BOARDS";      // the words of --board, each in quotes
constexpr char preloadCabinet[] = "SORVANE_SIM_CABINET";    // a file
constexpr char preloadScenario[] = "SORVANE_SIM_SCENARIO";  // a file
constexpr char preloadSteps[] = "SORVANE_SIM_STEPS";        // a line each
constexpr char preloadGrace[] = "SORVANE_SIM_GRACE";        // in milliseconds
constexpr char preloadSummary[] = "SORVANE_SIM_SUMMARY";    // a summary is wanted
constexpr char preloadRecord[] = "SORVANE_SIM_RECORD";      // a file
constexpr char preloadHeader[] = "SORVANE_SIM_HEADER";      // how the record begins
constexpr char preloadName[] = "SORVANE_SIM_NAME";          // of the run
constexpr char preloadProgram[] = "SORVANE_SIM_PROGRAM";    // the process that tells at its end what there is to tell

}  // namespace sim

#endif
