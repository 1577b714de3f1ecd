// What is told of exchanges: a line each, data, or a summary at the end. It serves a trace and a recording that is
// shown.
#ifndef SORVANE_TOOLS_TRACE_REPORT_H
#define SORVANE_TOOLS_TRACE_REPORT_H

#include "journal/json_lines.h"
#include "journal/summary.h"

#include <cstdio>
#include <string>
#include <vector>

namespace trace
{

/// Those of the operations that were asked for; all where none was.
class Filter
{
public:
    Filter() = default;
    /// Operations of the public class. Throws std::invalid_argument for one that sends no exchange.
    explicit Filter(std::vector<std::string> operations);

    bool passes(const journal::Event &event) const;

private:
    std::vector<std::string> operations_;
};

/// "    0.012345  4711  Vexa_0  GetInputs() = inputs 3 24 25 [41 us]"; a thread that is not its process's first
/// stands behind the process: 4711/4713.
std::string traceLine(const journal::Event &event, const journal::Names &names);

enum class Form { Lines, Data, Summary, SummaryAsData };

class Report
{
public:
    /// The file outlives it.
    Report(std::FILE *file, Form form, Filter filter, journal::Names names);

    /// What stands in front of data; it is written with the first of it.
    void begin(const journal::Header &header);
    void add(const journal::Event &event);
    /// What is left to say. False when the file did not take all of it.
    bool end();

private:
    void write(const std::string &line);

    std::FILE *file_;
    Form form_;
    Filter filter_;
    journal::Names names_;
    std::string heading_;
    journal::Summary summary_;
};

}  // namespace trace

#endif
