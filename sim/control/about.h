// What a run tells about itself, an object in JSON.
#ifndef SORVANE_SIM_CONTROL_ABOUT_H
#define SORVANE_SIM_CONTROL_ABOUT_H

#include "sim/board/virtual_boards.h"
#include "sim/cabinet/cabinet.h"
#include "sim/control/run_names.h"
#include "sim/language/words.h"

namespace sim
{

/// Of a run that begins now.
std::string aboutRun(const RunName &name, const VirtualBoards &boards, const cabinet::Cabinet &cabinet,
                     const TextWords &program);

/// What whoever lists runs reads of it.
struct AboutRun {
    TextWords boards;  ///< "0=R35 (main)"
    TextWords program;
    std::string since;  ///< 2026-11-25T14:41:02Z
    std::string json;   ///< the whole
};

/// Throws UsageError when it is something else.
AboutRun readAbout(const std::string &json);

}  // namespace sim

#endif
