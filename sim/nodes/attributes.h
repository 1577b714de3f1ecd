// The file system behind /sys/class/Vexa: for each plugged board Vexa_<n>/device/product and speed.
#ifndef SORVANE_SIM_NODES_ATTRIBUTES_H
#define SORVANE_SIM_NODES_ATTRIBUTES_H

#include "sim/board/virtual_boards.h"
#include "sim/nodes/file_server.h"

namespace sim
{

class Attributes
{
public:
    Attributes(VirtualBoards &boards, OwnedFd device);

private:
    FileServer server_;
};

}  // namespace sim

#endif
