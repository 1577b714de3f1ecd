// The copied bytes of an arena, looked at by their places alone.
#ifndef SORVANE_INSPECT_ARENA_CONTENTS_H
#define SORVANE_INSPECT_ARENA_CONTENTS_H

#include <cstddef>
#include <string>
#include <vector>

constexpr std::size_t segmentBytes = 65536;

struct ArenaContents {
    static constexpr int objectCount = 4;
    static constexpr int deviceCount = 16;
    static constexpr int patternBytes = 5;

    /// What all processes share of one board.
    struct Device {
        unsigned char onPattern[patternBytes] = {};
        unsigned char offPattern[patternBytes] = {};
        bool eepromConfigured = false;
    };

    unsigned int useCounts[objectCount] = {};  // patterns of the on and the off period, EEPROMs, receive buffers
    Device devices[deviceCount];
    std::vector<std::string> findings;  // what must never be
    std::vector<std::string> remarks;   // what killed processes leave by right, and what may be a stranger's
};

/// Adds a line; at most 200 characters of it.
[[gnu::format(printf, 2, 3)]] void add(std::vector<std::string> &lines, const char *format, ...);

/// Header, runs, objects and tables of a whole segment.
void lookAtContents(const std::vector<unsigned char> &bytes, ArenaContents &contents);

#endif
