// Dumps: files that hold a part of a board's memory, byte for byte.
#ifndef SORVANE_TOOLS_FILES_H
#define SORVANE_TOOLS_FILES_H

#include <string>
#include <string_view>

namespace tools
{

/// Both throw Refusal.
std::string readFile(const std::string &path);
/// The file is there with all its bytes or, when it fails, as it was before. What is no file, as /dev/null, is written
/// to.
void writeFile(const std::string &path, std::string_view bytes);

/// Where they first differ, as "at byte 17 (address 25): 00 in the file, FF on the board"; empty: alike.
std::string firstDifference(std::string_view file, std::string_view board, std::size_t firstAddress);

}  // namespace tools

#endif
