// The full check of the arena and its semaphore set, for tests and for whoever looks at a machine from outside. It
// needs nothing of the library and knows every layout by its bytes, so that it cannot share a mistake with the code
// that made them.
//
// It changes nothing. While it looks it holds the arena's mutex (with undo), so that nobody joins and the last one does
// not leave, and is attached to copy the segment; a mutex that does not come free within a second is a finding of its
// own. Where the set or the segment is removed under its eyes, it looks anew.
#ifndef SORVANE_SHARED_ARENA_REPORT_H
#define SORVANE_SHARED_ARENA_REPORT_H

#include <string>
#include <vector>

struct ArenaReport {
    static constexpr int objectCount = 4;

    bool clean() const { return segmentID == -1 && setID == -1; }
    /// The findings, a line each.
    std::string text() const;

    int segmentID = -1;  // -1: no segment under the key file's key
    int setID = -1;      // -1: no set
    int registrations = 0;
    unsigned long attachments = 0;
    int attachedProcesses = 0;                 // as far as /proc shows them
    unsigned int useCounts[objectCount] = {};  // patterns of the on and the off period, EEPROMs, receive buffers
    std::vector<std::string> findings;         // what must never be
    std::vector<std::string> remarks;          // what killed processes leave by right, and what may be a stranger's
};

ArenaReport reportArena();

#endif
