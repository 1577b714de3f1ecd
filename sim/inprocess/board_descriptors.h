// The descriptors of this process that lead to a board.
#ifndef SORVANE_SIM_INPROCESS_BOARD_DESCRIPTORS_H
#define SORVANE_SIM_INPROCESS_BOARD_DESCRIPTORS_H

#include "sim/inprocess/board_paths.h"

#include <optional>

namespace sim
{

/// A descriptor of the board's file with the caller's open flags, or a negative errno: ENOENT without a plugged board,
/// EACCES for writing to an attribute.
int openBoardFile(const BoardPath &path, int flags);

/// What an ioctl on the descriptor comes to, 0 or a negative errno; nothing when it does not lead to a board.
std::optional<int> boardIoctl(int descriptor, unsigned long request, void *argument);

}  // namespace sim

#endif
