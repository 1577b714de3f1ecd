// The two ways to a trace: a program that is started under it, and one that runs already.
#ifndef SORVANE_TOOLS_TRACE_RUN_H
#define SORVANE_TOOLS_TRACE_RUN_H

#include "journal/event.h"

#include <functional>
#include <string>
#include <vector>

namespace trace
{

/// Why something cannot be traced, and what to do about it.
struct Obstacle {
    std::string what;
    std::string advice;
};

using OnExchange = std::function<void(journal::Event &&)>;
/// What somebody should know who looks at the trace.
using OnNote = std::function<void(const std::string &)>;

/// Runs the program to its end, and all that it leaves running. Whatever signal comes to this process and not to the
/// program reaches it. The result is its wait status, for sim::endLike. Throws Obstacle before anything is started.
int traceProgram(const std::vector<std::string> &words, const OnExchange &exchange, const OnNote &note);

/// Until the process has ended or somebody ends this one by a signal; the process then runs on. Throws Obstacle.
void traceProcess(int process, const OnExchange &exchange, const OnNote &note);

}  // namespace trace

#endif
