// `cabinet check FILE` and `cabinet new MODEL`, and a cabinet file for the other commands.
#ifndef SORVANE_SIM_COMMAND_CABINET_COMMAND_H
#define SORVANE_SIM_COMMAND_CABINET_COMMAND_H

#include "sim/cabinet/cabinet.h"
#include "sim/language/words.h"

namespace CLI
{
class App;
}

namespace sim
{

/// Adds its two commands to it. Their results are exit statuses: 1 for a file with mistakes, which go to standard error
/// a line each.
class CabinetCommand
{
public:
    explicit CabinetCommand(CLI::App &command);

    int carryOut() const;

private:
    int check() const;
    int printTemplate() const;

    const CLI::App *check_;
    std::string file_;
    std::string model_;
};

/// Throws UsageError with every mistake.
cabinet::Cabinet cabinetFrom(const std::string &file);

}  // namespace sim

#endif
