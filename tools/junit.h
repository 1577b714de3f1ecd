// Results of tests, and how they are written down.
#ifndef SORVANE_TOOLS_JUNIT_H
#define SORVANE_TOOLS_JUNIT_H

#include "tools/print.h"

#include <string>
#include <vector>

namespace tools
{

enum class Outcome { Passed, Failed, NotFitted };

/// "passed", "FAILED", "not fitted"
const char *wordFor(Outcome outcome);

struct Verdict {
    Outcome outcome = Outcome::Failed;
    std::string detail;
};

struct TestReport {
    std::string name;
    Verdict verdict;
    double seconds = 0;
};

bool hasFailed(const std::vector<TestReport> &reports);
Json jsonOf(const std::vector<TestReport> &reports);
/// As a build server reads it. Throws Refusal.
void writeJUnit(const std::string &file, const std::string &suite, const std::vector<TestReport> &reports);

}  // namespace tools

#endif
