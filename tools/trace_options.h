// How exchanges are to be told, for `trace` and `show`.
#ifndef SORVANE_TOOLS_TRACE_OPTIONS_H
#define SORVANE_TOOLS_TRACE_OPTIONS_H

#include "tools/command.h"
#include "tools/failure.h"
#include "tools/trace/report.h"

#include <CLI/CLI.hpp>

namespace tools
{

struct ReportOptions {
    bool summary = false;
    std::vector<std::string> filter = {};

    void declare(CLI::App &command)
    {
        command.add_flag("--summary", summary, "operations, how often and how long, instead of every exchange");
        command.add_option("--filter", filter, "these operations alone")->expected(1, -1);
    }

    trace::Form form(const Settings &settings) const
    {
        if (summary)
            return settings.json ? trace::Form::SummaryAsData : trace::Form::Summary;
        return settings.json ? trace::Form::Data : trace::Form::Lines;
    }

    trace::Filter chosen() const
    {
        try {
            return trace::Filter(filter);
        } catch (const std::invalid_argument &error) {
            throw UsageError(error.what());
        }
    }
};

}  // namespace tools

#endif
