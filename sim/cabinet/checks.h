// What no key of a cabinet file can tell alone: how boards and parts go together.
#ifndef SORVANE_SIM_CABINET_CHECKS_H
#define SORVANE_SIM_CABINET_CHECKS_H

#include "sim/cabinet/cabinet.h"
#include "sim/cabinet/fields.h"

namespace cabinet
{

void checkBoards(const std::vector<Board> &boards, Mistakes &mistakes);
void checkParts(const Board &board, Mistakes &mistakes);

/// `output "win_lamp"`, `serial0`.
std::string titleOf(const Part &part);

}  // namespace cabinet

#endif
