// The full check of the arena and its semaphore set, for tests and for whoever looks at a machine from outside. It
// needs nothing of the library and knows every layout by its bytes, so that it cannot share a mistake with the code
// that made them.
//
// It changes nothing. While it copies the segment it is attached, and holds the arena's mutex (with undo) so that
// nobody joins or leaves meanwhile; a mutex that does not come free within a second is a finding of its own.
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
    std::vector<std::string> findings;         // what must not be while nobody is in the middle of joining or leaving
    std::vector<std::string> remarks;          // what killed processes leave by right
};

ArenaReport reportArena();

#endif
