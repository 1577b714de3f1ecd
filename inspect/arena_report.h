// The full check of the arena and its semaphore set, for tests and for whoever looks at a machine from outside. It
// needs nothing of the library and knows every layout by its bytes, so that it cannot share a mistake with the code
// that made them.
//
// It changes nothing. While it looks it holds the arena's mutex (with undo), so that nobody joins and the last one does
// not leave, and is attached to copy the segment; a mutex that does not come free within a second is a finding of its
// own. Where the set or the segment is removed under its eyes, it looks anew.
#ifndef SORVANE_INSPECT_ARENA_REPORT_H
#define SORVANE_INSPECT_ARENA_REPORT_H

#include "inspect/arena_contents.h"

#include <string>
#include <vector>

struct ArenaReport : ArenaContents {
    bool clean() const { return segmentID == -1 && setID == -1; }
    /// The findings, a line each.
    std::string text() const;

    int segmentID = -1;  // -1: no segment under the key file's key
    int setID = -1;      // -1: no set
    int registrations = 0;
    unsigned long attachments = 0;
    int attachedProcesses = 0;  // as far as /proc shows them

    struct Held {
        int mutex;
        int process;  // the one that took it
    };
    std::vector<Held> held;  // mutexes that were taken at that moment
};

ArenaReport reportArena();

#endif
