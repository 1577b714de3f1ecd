// Reads after which the board has forgotten what it told: whatever was taken is shown, also where a later one fails.
#ifndef SORVANE_TOOLS_TAKING_H
#define SORVANE_TOOLS_TAKING_H

#include "tools/board.h"
#include "tools/failure.h"
#include "tools/print.h"

namespace tools
{

/// `take(report)` fills the report and may throw Refusal; `tell(report)` says what stands in it. Returns the exit
/// status.
template <class Take, class Tell>
int takeAndTell(const Board &board, const Settings &settings, Take take, Tell tell)
{
    Json report = {{"board", board.device()}};
    std::optional<Refusal> refusal;
    try {
        take(report);
    } catch (const Refusal &caught) {
        refusal = caught;
    }
    if (!settings.json) {
        tell(report);
        return refusal ? throw *refusal : 0;
    }
    if (refusal) {
        report["error"] = {{"status", statusOfFailure}, {"text", refusal->what()}};
        if (refusal->code())
            report["error"]["code"] = *refusal->code();
        if (!refusal->advice().empty())
            report["error"]["try"] = refusal->advice();
    }
    print(report);
    return refusal ? statusOfFailure : 0;
}

}  // namespace tools

#endif
