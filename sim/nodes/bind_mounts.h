// A system directory that takes new entries without the system noticing.
#ifndef SORVANE_SIM_NODES_BIND_MOUNTS_H
#define SORVANE_SIM_NODES_BIND_MOUNTS_H

#include <functional>
#include <string>

namespace sim
{

/// Puts a tmpfs over a directory of this process's own mount namespace and binds every original entry into it, with all
/// that is mounted below, except those that are left out.
void replaceByBindMounts(const std::string &directory, const std::function<bool(const std::string &name)> &leftOut);

}  // namespace sim

#endif
