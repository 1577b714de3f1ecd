// What a cabinet file calls the boards, for whoever tells events.
#ifndef SORVANE_TOOLS_BOARD_NAMES_H
#define SORVANE_TOOLS_BOARD_NAMES_H

#include "journal/event.h"
#include "sim/cabinet/cabinet.h"

namespace tools
{

/// The cabinet outlives them.
inline journal::Names boardNames(const cabinet::Cabinet &cabinet)
{
    journal::Names names;
    names.board = [&cabinet](int device) {
        for (const cabinet::Board &board : cabinet.boards()) {
            if (board.device == device)
                return board.name;
        }
        return std::string();
    };
    return names;
}

}  // namespace tools

#endif
