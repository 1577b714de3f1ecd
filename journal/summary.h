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
    // Of their durations, in whole microseconds; 0: not known.
    std::chrono::microseconds shortest = {};
    std::chrono::microseconds median = {};
    std::chrono::microseconds slow = {};  ///< 99 in 100 were as quick
};

class Summary
{
public:
    /// Looks at exchanges alone.
    void add(const Event &event);

    /// The most frequent first, then by name.
    std::vector<OperationCount> operations() const;

    /// A line an operation: "     12  GetInputs", "      3  GetClock (1 refused)"; under a heading and with the times
    /// where some are known.
    std::string text() const;

private:
    struct Operation {
        OperationCount count;
        std::map<std::chrono::microseconds, std::uint64_t> durations;  ///< how many took how long
    };

    std::map<std::string, Operation> byName_;
};

}  // namespace journal

#endif
