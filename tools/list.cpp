#include "tools/command.h"
#include "tools/failure.h"

#include <CLI/CLI.hpp>

namespace tools
{

Command::Action declareList(CLI::App &)
{
    return [](const Settings &) -> int { throw Refusal("not there yet"); };
}

}  // namespace tools
