// The private view of the machine in which a program meets the virtual boards.
#ifndef SORVANE_SIM_NODES_NAMESPACES_H
#define SORVANE_SIM_NODES_NAMESPACES_H

#include "sim/system/descriptors.h"

#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace sim
{

/// Without the right to mount, a user namespace in which the caller keeps its ids and has it. Whoever is to serve or to
/// live in it is started afterwards. Entering it clears a parent-death signal.
void obtainTheRightToMount();

/// What the mounting process hands to the serving one: /dev/fuse descriptors, already mounted.
struct MountedDevices {
    std::map<int, OwnedFd> nodes;  ///< by device number
    OwnedFd attributes;
};

/// Gives this process its own mount namespace with these nodes in /dev and the attributes in /sys/class. Neither can
/// take new files where it stands (and /dev would show them to everybody), so both become a tmpfs into which
/// everything that was there is bound. Real boards and those of an outer run are left out.
///
/// Called outside of any new process namespace: the kernel names callers as the mounting process sees them. `runName`
/// is what findRunFromInside() finds there.
MountedDevices mountDevices(const std::vector<int> &deviceNos, const std::string &runName);

/// Until somebody has asked for a node's owner, the kernel takes it for root's, and lets nobody of a user namespace
/// write to it. For the mounting process, when the nodes are served.
void learnOwnersOfNodes(const std::vector<int> &deviceNos);

/// Joins the user and IPC namespaces of a process and takes a copy of its mount namespace. Root becomes the process's
/// user where its own id means nothing.
void joinNamespacesOf(pid_t process);

/// What is missing on this machine for all that, found out by trying; nothing when it works.
std::optional<std::string> whatNodesLack();

}  // namespace sim

#endif
