// What was asked of a board in a time, operation by operation.
#ifndef SORVANE_JOURNAL_SUMMARY_H
#define SORVANE_JOURNAL_SUMMARY_H

#include "journal/event.h"

#include <map>
#include <vector>

namespace journal
{

struct OperationCount {
    std::string name;
    std::uint64_t count = 0;  ///< all of them
    std::uint64_t refused = 0;
    std::uint64_t failed = 0;
    std::chrono::nanoseconds duration = {};  ///< of all of them together; 0: not known
    std::chrono::nanoseconds longest = {};
};

class Summary
{
public:
    /// Looks at exchanges alone.
    void add(const Event &event);

    /// The most frequent first, then by name.
    std::vector<OperationCount> operations() const;

    /// A line an operation: "     12  GetInputs", "      3  GetClock (1 refused)"; with times where they are known.
    std::string text() const;

private:
    std::map<std::string, OperationCount> byName_;
};

}  // namespace journal

#endif
