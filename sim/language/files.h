// Files that hold a memory's bytes.
#ifndef SORVANE_SIM_LANGUAGE_FILES_H
#define SORVANE_SIM_LANGUAGE_FILES_H

#include "sim/core/bytes.h"

#include <string>

namespace sim
{

/// No memory of a board is nearly as large.
constexpr std::size_t largestFile = 4U << 20;

/// Throws UsageError with the file's name and the reason. Only a regular file is read.
Bytes bytesOfFile(const std::string &file);
/// Whole or not at all: under another name first, in the same folder. Throws std::runtime_error likewise.
void writeFile(const std::string &file, const Bytes &bytes);

}  // namespace sim

#endif
