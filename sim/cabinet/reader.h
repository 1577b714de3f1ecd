// From the text of a cabinet file to its boards.
#ifndef SORVANE_SIM_CABINET_READER_H
#define SORVANE_SIM_CABINET_READER_H

#include "sim/cabinet/cabinet.h"

namespace cabinet
{

constexpr unsigned int formatVersion = 1;

/// Throws Error with every mistake; of a text that is no TOML, with the first.
void readCabinet(const std::string &text, const std::string &file, std::string &name, std::vector<Board> &boards);

}  // namespace cabinet

#endif
