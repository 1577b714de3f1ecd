// The boards of a run: `--board N=MODEL[,option=value...]`.
#ifndef SORVANE_SIM_LANGUAGE_BOARD_OPTIONS_H
#define SORVANE_SIM_LANGUAGE_BOARD_OPTIONS_H

#include "sim/board/virtual_boards.h"
#include "sim/language/words.h"

#include <map>

namespace sim
{

/// One --board, checked. What is not said is as the board comes.
struct BoardOptions {
    int deviceNo = 0;
    Model model = Model::R20;
    std::optional<bool> highSpeed;
    std::optional<unsigned int> number;
    std::optional<R20EEPROM> eeprom;
    std::optional<bool> firmwareRunning;
    struct HopperOptions {
        unsigned int stock = 0;
        std::optional<unsigned int> motor;
    };
    std::string eepromFile;  ///< that keeps its contents over runs; empty: none, here and below
    std::string sramFile;
    std::map<unsigned int, bool> inputs;              ///< that begin at a level
    std::map<unsigned int, HopperOptions> hoppers;    ///< by input
    std::map<unsigned int, std::string> peripherals;  ///< by serial port
};

/// Throws UsageError for anything unknown, empty or repeated, boards included.
std::vector<BoardOptions> boardsFrom(const TextWords &arguments);

/// Builds them.
void plugBoards(VirtualBoards &boards, const std::vector<BoardOptions> &options);

/// What --board takes, for the help.
std::string boardOptionsHelp();

}  // namespace sim

#endif
