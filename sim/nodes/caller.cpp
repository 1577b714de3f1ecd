#include "sim/nodes/caller.h"

#include <csignal>
#include <cstdint>
#include <fstream>
#include <map>
#include <string>

namespace sim
{

namespace
{

constexpr std::uint64_t bitOf(int signal)
{
    return std::uint64_t{1} << (signal - 1);
}

// Their default is to stop, to continue or to do nothing.
constexpr std::uint64_t harmless = bitOf(SIGCHLD) | bitOf(SIGURG) | bitOf(SIGWINCH) | bitOf(SIGCONT) | bitOf(SIGSTOP) |
                                   bitOf(SIGTSTP) | bitOf(SIGTTIN) | bitOf(SIGTTOU);

}  // namespace

bool isDying(pid_t thread)
{
    std::ifstream status("/proc/" + std::to_string(thread) + "/status");
    if (!status)
        return true;
    std::map<std::string, std::string> lines;
    std::string name, value;
    while (std::getline(status, name, ':') && std::getline(status, value))
        lines[name] = value;
    const auto mask = [&lines](const char *line) { return std::strtoull(lines[line].c_str(), nullptr, 16); };
    const std::uint64_t pending = mask("SigPnd") | mask("ShdPnd");
    if (pending & bitOf(SIGKILL))
        return true;
    // A debugger may keep any other signal from its program.
    if (std::strtol(lines["TracerPid"].c_str(), nullptr, 10) != 0)
        return false;
    return (pending & ~mask("SigBlk") & ~mask("SigIgn") & ~mask("SigCgt") & ~harmless) != 0;
}

}  // namespace sim
