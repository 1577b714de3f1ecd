// The paths at which boards are found.
#ifndef SORVANE_SIM_INPROCESS_BOARD_PATHS_H
#define SORVANE_SIM_INPROCESS_BOARD_PATHS_H

#include <optional>

namespace sim
{

struct BoardPath {
    enum class File { Node, Product, Speed };

    File file;
    int deviceNo;
};

/// Which board's file an absolute path names; nothing for every other path, a device number above 15 among them.
std::optional<BoardPath> boardPath(const char *path);

}  // namespace sim

#endif
