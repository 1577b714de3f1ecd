// What doctor has found, each with what to do.
#ifndef SORVANE_TOOLS_FINDINGS_H
#define SORVANE_TOOLS_FINDINGS_H

#include "tools/command.h"

#include <string>
#include <vector>

namespace tools
{

enum class Weight { Fine, Remark, Problem };

struct Finding {
    Weight weight;
    std::string subject;  ///< "node", "images", "arena", "lock", "key file"
    std::string text;
    std::string whatToDo;  ///< empty where there is nothing to do
};

using Findings = std::vector<Finding>;

/// Nodes that are missing or closed to the user, and who has the others open.
Findings lookAtNodes();
/// Whether the embedded images are stand-ins.
Findings lookAtImages();
/// Arena and semaphore set, dead registrations, and processes that are stopped while they hold a lock.
Findings lookAtSharedState();
/// The files in /tmp whose inodes are the keys of the shared objects, and who may take them or the objects away.
Findings lookAtKeyFiles();

/// Removes memory and set where nobody is attached, registered and alive. Throws Refusal otherwise.
Findings resetIfUnused();

}  // namespace tools

#endif
