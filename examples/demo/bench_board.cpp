// Puts a virtual board under an example program: linked into it, plugged before main() and looked at after it. The
// program itself is unchanged and knows nothing of it.
//
// BENCH_BOARD names the model: R20, R20s or R35.
#include "board/requests.h"
#include "sim/inprocess/inprocess.h"
#include "sim/peripherals/cctalk_acceptor.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{

sim::Model modelFromEnvironment()
{
    const char *name = std::getenv("BENCH_BOARD");
    for (sim::Model model : {sim::Model::R20, sim::Model::R20s, sim::Model::R35})
        if (name && std::strcmp(name, sim::nameOf(model)) == 0)
            return model;
    std::fprintf(stderr, "BENCH_BOARD is R20, R20s or R35\n");
    std::exit(2);
}

/// What people do at the machine while the program runs.
void visitMachine(sim::VirtualBoard &board)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    const auto guard = board.lock();
    board.inputs().pulse(2, 3);
    board.insertCoin(4);
    board.insertCoin(6);
}

class Bench
{
public:
    Bench() : board_(sim::inProcessBoards().plug(0, modelFromEnvironment()))
    {
        if (board_.model() != sim::Model::R20)
            board_.highSpeed();
        board_.boardNumber(3).eeprom(E24LC64).hopper(5, 3);
        board_.serialPeripheral(0, std::make_unique<sim::CcTalkAcceptor>());
        board_.inputs().set(1, true);
        board_.inputs().set(17, true);
        board_.switches().open(2);
        board_.switches().close(2);
        visitor_ = std::thread(visitMachine, std::ref(board_));
    }

    ~Bench()
    {
        visitor_.join();
        const auto guard = board_.lock();
        std::printf("  -- the board saw: %s\n", requests().c_str());
        std::printf("  -- it is left with: %s\n", outputs().c_str());
    }
    Bench(const Bench &) = delete;
    Bench &operator=(const Bench &) = delete;

private:
    /// Runs of equal requests, by name.
    std::string requests() const
    {
        std::string text;
        std::string last;
        int count = 0;
        const auto finish = [&] {
            if (count > 0)
                text += (text.empty() ? "" : ", ") + last + (count > 1 ? " x" + std::to_string(count) : "");
        };
        for (const sim::Exchange &exchange : board_.exchanges()) {
            const char *name = nameOfRequest(exchange.request, exchange.pipe);
            const std::string now = name ? name : "?";
            if (now != last) {
                finish();
                last = now;
                count = 0;
            }
            ++count;
        }
        finish();
        return text;
    }

    std::string outputs()
    {
        std::string text;
        for (unsigned int n = 0; n <= usbOutput37; ++n)
            if (board_.outputs().lit(n))
                text += (text.empty() ? "output " : ", ") + std::to_string(n);
        return text.empty() ? "all outputs off" : text + " on";
    }

    sim::VirtualBoard &board_;
    std::thread visitor_;
} bench;

}  // namespace
