// A fruit machine: a small but whole game on the board, to be played on the machine of wiring.h or on a virtual one.
//
//     sorvane-sim run --cabinet examples/cabinets/fruit_machine.toml -- fruit_machine [--wins LIST]
//
// A coin gives credit, start plays for one, collect pays what is left. After a lost game up to two reels may be held
// for the next. Every event is a line on the standard output. Money is exact through power cuts, crashes and faults;
// ledger.h and till.h tell how. SIGTERM, SIGINT and SIGHUP end the game safely, with status 0.
#include "game.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace fruit_machine
{

namespace
{

constexpr auto betweenLooks = std::chrono::milliseconds(20);
constexpr auto betweenOpenings = std::chrono::milliseconds(250);

volatile std::sig_atomic_t endAsked = 0;

void askForEnd(int)
{
    endAsked = 1;
}

// A terminal or a pipe that goes away must not end the program with the hopper running.
void catchSignals()
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        std::signal(number, askForEnd);
    std::signal(SIGPIPE, SIG_IGN);
}

/// Reads "0,3,0"; false unless each is a win that the reels can show.
bool readWins(const char *list, std::vector<unsigned int> &wins)
{
    for (;;) {
        char *end = nullptr;
        const unsigned long win = std::strtoul(list, &end, 10);
        if (*list < '0' || *list > '9' || win > 0xFFFF || !canPay(static_cast<unsigned int>(win)))
            return false;
        wins.push_back(static_cast<unsigned int>(win));
        if (*end == '\0')
            return true;
        if (*end != ',')
            return false;
        list = end + 1;
    }
}

int explain(std::FILE *to, int status)
{
    std::fputs("usage: fruit_machine [--wins LIST]\n"
               "  --wins LIST  what the games to come win, over and over: 0, 3, 5, 10 or 25 each, as in 0,3,0.\n"
               "               Where held reels cannot show it, the game is lost\n",
               to);
    return status;
}

void tryToEnd(Game &game)
{
    try {
        game.end();
    } catch (const BoardLost &lost) {
        std::printf("board lost: %s\n", lost.what());
    }
}

/// Plays until a signal comes. A board that is lost is opened again as soon as it is there; at the start it must be.
int run(Game &game)
{
    bool open = false;
    bool everOpen = false;
    std::string told;
    while (!endAsked) {
        try {
            if (!open)
                game.open();
            open = everOpen = true;
            told.clear();
            game.tick();
        } catch (const BoardLost &lost) {
            open = false;
            game.close();
            if (lost.what() != told)
                std::printf("board lost: %s\n", lost.what());
            told = lost.what();
            if (!everOpen)
                return 1;
        }
        std::this_thread::sleep_for(open ? betweenLooks : betweenOpenings);
    }
    if (open)
        tryToEnd(game);
    return 0;
}

}  // namespace

}  // namespace fruit_machine

int main(int argc, char **argv)
{
    using namespace fruit_machine;
    std::vector<unsigned int> wins;
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0)
        return explain(stdout, 0);
    if (argc != 1 && (argc != 3 || std::strcmp(argv[1], "--wins") != 0 || !readWins(argv[2], wins)))
        return explain(stderr, 2);
    // Whoever reads along sees each event when it happens.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    catchSignals();
    Game game(wins);
    return run(game);
}
