// What can be done at a machine and expected of it, one thing after the other, while a program runs (step_player.h).
#ifndef SORVANE_SIM_LANGUAGE_STEPS_H
#define SORVANE_SIM_LANGUAGE_STEPS_H

#include "sim/language/commands.h"

namespace sim
{

/// Beside the commands: `pause`, `never` and `stop`.
const std::vector<CommandRow> &stepRows();

struct Step {
    Command command;
    std::string where;  ///< "FILE:LINE: "
};

struct Steps {
    std::vector<Step> inOrder;
    std::vector<Step> atEnd;  ///< `at end expect ...`

    bool empty() const { return inOrder.empty() && atEnd.empty(); }
};

/// The signal of a `stop`.
int signalOf(const Step &step);

/// The board and the condition of a step that has one, with numbers for names.
struct StepCondition {
    std::shared_ptr<VirtualBoard> board;
    ConditionReading condition;
};
StepCondition conditionOf(const Step &step, Session &session);

/// Throws UsageError for what the boards lack; changes them as the step would.
void tryStep(const Step &step, Session &session);

}  // namespace sim

#endif
