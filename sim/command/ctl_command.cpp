#include "sim/command/ctl_command.h"

#include "sim/command/follow.h"
#include "sim/control/control_socket.h"
#include "sim/language/commands.h"

#include <algorithm>
#include <cstdio>

namespace sim
{

int control(const std::optional<std::string> &runId, TextWords words)
{
    const auto followed = std::find(words.begin(), words.end(), "--follow");
    const bool follow = followed != words.end();
    if (follow) {
        words.erase(followed);
        if (words.empty() || words.back() != "state")
            throw UsageError("--follow is allowed with state alone: [--board N] state --follow");
    }
    (void)Command::parse(words);
    const RunName run = chooseRun(runId);
    if (follow)
        return followState(run, words);
    const ControlAnswer answer = askRun(run, words);
    if (answer.status == 0)
        std::fputs(answer.text.c_str(), stdout);
    else
        std::fprintf(stderr, "sorvane-sim: %s\n", answer.text.c_str());
    return answer.status;
}

}  // namespace sim
