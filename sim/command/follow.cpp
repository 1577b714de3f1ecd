#include "sim/command/follow.h"

#include "sim/control/control_client.h"
#include "sim/system/signals.h"

#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace sim
{

namespace
{

constexpr timespec betweenPictures{0, 100'000'000};

// The other page of the terminal, without a cursor; what was on the first comes back.
class Screen
{
public:
    Screen() { write("\033[?1049h\033[?25l"); }
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;
    ~Screen() { write("\033[?25h\033[?1049l"); }

    // Over the old picture, line by line, so that nothing flickers.
    void show(const std::string &text)
    {
        winsize size{};
        ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size);
        std::string picture = "\033[H\033[?7l";
        unsigned int row = 0;
        for (const std::string &line : splitAt(text, '\n')) {
            if (size.ws_row > 0 && ++row > size.ws_row)
                break;
            picture += (row > 1 ? "\r\n" : "") + line + "\033[K";
        }
        write(picture + "\033[J\033[?7h");
    }

private:
    static void write(const std::string &text)
    {
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
    }
};

// True when a signal that ends programs has come.
bool pauseUntilNext()
{
    sigset_t ending;
    ::sigemptyset(&ending);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE})
        ::sigaddset(&ending, signal);
    return ::sigtimedwait(&ending, nullptr, &betweenPictures) > 0;
}

}  // namespace

int followState(const RunName &run, const TextWords &words)
{
    if (!::isatty(STDOUT_FILENO))
        throw UsageError("--follow needs a terminal; allowed without one is state [--json]");
    ControlClient client(run);
    const BlockedSignals blocked;
    Screen screen;
    do {
        const Outcome state = client.ask({.words = words});
        if (state.status == statusOfUsageError)
            throw UsageError(state.error);
        if (state.status != 0)
            return 0;  // the run has ended
        screen.show(state.text);
    } while (!pauseUntilNext());
    return 0;
}

}  // namespace sim
