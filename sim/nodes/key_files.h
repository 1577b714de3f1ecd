// The two files in /tmp from which the library's SysV keys are made. Programs leave them behind by design; a run with
// SysV objects of its own takes away those that it brought.
#ifndef SORVANE_SIM_NODES_KEY_FILES_H
#define SORVANE_SIM_NODES_KEY_FILES_H

#include <string>
#include <vector>

namespace sim
{

class KeyFiles
{
public:
    /// Notes which of them are missing now.
    KeyFiles();

    /// Removes those, unless somebody else depends on them: another run that is up, or a program of the machine whose
    /// SysV objects have their keys. Called in the machine's own IPC namespace.
    void removeNewOnes(bool otherRunsAreUp) const;

private:
    std::vector<std::string> missing_;
};

}  // namespace sim

#endif
