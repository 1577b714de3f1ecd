// The file system behind one device node. It consists of a single file: its mount point is /dev/Vexa_<n> itself.
#ifndef SORVANE_SIM_NODES_NODE_H
#define SORVANE_SIM_NODES_NODE_H

#include "sim/board/virtual_boards.h"
#include "sim/nodes/file_server.h"

namespace sim
{

class Node
{
public:
    Node(VirtualBoards &boards, int deviceNo, OwnedFd device);

    const VirtualBoards &boards() const { return boards_; }
    int deviceNo() const { return deviceNo_; }
    /// What chmod and chown have made of it; the kernel goes by it when somebody opens the node.
    struct stat &attributes() { return attributes_; }
    void passTime(Nanoseconds duration) { server_.passTime(duration); }

private:
    VirtualBoards &boards_;
    int deviceNo_;
    struct stat attributes_;  // for the server's thread alone
    FileServer server_;
};

}  // namespace sim

#endif
