// The copied bytes of an arena, looked at by their places alone.
#ifndef SORVANE_SHARED_ARENA_CONTENTS_H
#define SORVANE_SHARED_ARENA_CONTENTS_H

#include <cstddef>
#include <string>
#include <vector>

#include "shared/arena_report.h"

constexpr std::size_t segmentBytes = 65536;

/// Adds a line; at most 200 characters of it.
[[gnu::format(printf, 2, 3)]] void add(std::vector<std::string> &lines, const char *format, ...);

/// Header, runs, objects and tables of a whole segment.
void lookAtContents(const std::vector<unsigned char> &bytes, ArenaReport &report);

#endif
