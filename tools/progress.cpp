#include "tools/progress.h"

#include <cstdio>
#include <string>
#include <unistd.h>

namespace tools
{

namespace
{

constexpr std::chrono::milliseconds betweenTwo(100);
constexpr std::size_t cells = 30;

}  // namespace

Progress::Progress(std::size_t total, const char *unit)
    : total_(total), unit_(unit), shown_(total != 0 && ::isatty(STDERR_FILENO))
{
}

Progress::~Progress()
{
    if (shown_)
        std::fputs("\r\033[K", stderr);
}

void Progress::at(std::size_t done)
{
    const Clock::time_point now = Clock::now();
    if (!shown_ || (now - last_ < betweenTwo && done != total_))
        return;
    last_ = now;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
    const auto left = static_cast<unsigned long>(rate > 0 ? static_cast<double>(total_ - done) / rate : 0);
    const std::string bar(cells * done / total_, '#');
    std::fprintf(stderr, "\r\033[K%3zu%% [%-*s] %.0f %s/s, %lu:%02lu left", 100 * done / total_,
                 static_cast<int>(cells), bar.c_str(), rate, unit_, left / 60, left % 60);
    std::fflush(stderr);
}

}  // namespace tools
