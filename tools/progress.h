// How far a long transfer is, on a terminal: a bar, the rate and the time that is left. Nothing on a pipe.
#ifndef SORVANE_TOOLS_PROGRESS_H
#define SORVANE_TOOLS_PROGRESS_H

#include <chrono>
#include <cstddef>

namespace tools
{

class Progress
{
public:
    explicit Progress(std::size_t total, const char *unit = "bytes");
    /// Takes the bar away again.
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void at(std::size_t done);

private:
    using Clock = std::chrono::steady_clock;

    std::size_t total_;
    const char *unit_;
    bool shown_;
    Clock::time_point start_ = Clock::now();
    Clock::time_point last_ = start_;
};

}  // namespace tools

#endif
