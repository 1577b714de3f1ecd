// Which other processes have a node open, from /proc.
#ifndef SORVANE_TOOLS_HOLDERS_H
#define SORVANE_TOOLS_HOLDERS_H

#include <string>
#include <sys/types.h>
#include <vector>

namespace tools
{

struct Process {
    int id;
    std::string command;  ///< its words; its name in brackets where they cannot be read
    std::string user;

    /// "4711 (./game, user arcade)"
    std::string text() const;
};

struct Holders {
    std::vector<Process> processes;  ///< by id
    bool complete = true;            ///< false: some processes may be looked at by root alone

    std::string text() const;
};

Process describe(int process);
/// As a number where the system has no name.
std::string userName(uid_t id);

/// Of each path, in the same order. This process is left out.
std::vector<Holders> holdersOf(const std::vector<std::string> &paths);

}  // namespace tools

#endif
