// What the preloaded library finds in its environment.
#ifndef SORVANE_SIM_CONTROL_PRELOAD_ENVIRONMENT_H
#define SORVANE_SIM_CONTROL_PRELOAD_ENVIRONMENT_H

namespace sim
{

constexpr char preloadBoards[] = "SORVANE_SIM_BOARDS";      // the words of --board, blanks between them
constexpr char preloadScenario[] = "SORVANE_SIM_SCENARIO";  // a file
constexpr char preloadProgram[] = "SORVANE_SIM_PROGRAM";    // the process that says what was not reached

}  // namespace sim

#endif
