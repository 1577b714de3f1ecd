// How a process inside a run finds the run: a link in its private /dev that leads to the run's name.
#ifndef SORVANE_SIM_NODES_RUN_LINK_H
#define SORVANE_SIM_NODES_RUN_LINK_H

#include <array>
#include <climits>
#include <optional>
#include <string>
#include <unistd.h>

namespace sim
{

constexpr char runLink[] = "/dev/sorvane-sim";

/// The run in whose mount namespace this process lives.
inline std::optional<std::string> findRunFromInside()
{
    std::array<char, PATH_MAX> name{};
    if (::readlink(runLink, name.data(), name.size() - 1) <= 0)
        return std::nullopt;
    return name.data();
}

}  // namespace sim

#endif
