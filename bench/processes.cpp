// Processes that switch outputs as fast as they can, so many on each board; what they have done together is one line
// of JSON. The boards are whatever stands at their paths: device nodes, or the preloaded driver that answers at once.
//
//     bench_processes library|hand BOARDS PROCESSES_ON_EACH SECONDS
#include "api/sorvaneusb.h"
#include "bench/by_hand.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/sem.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

struct Together {
    std::atomic<int> ready{0};
    std::atomic<bool> stop{false};
    std::atomic<unsigned long long> done{0};
    std::atomic<unsigned long long> microseconds{0};  // of CPU
    int gate[2];                                      // a pipe: its end lets everybody go
};

unsigned long long cpuSoFar()
{
    rusage usage;
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<unsigned long long>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000000 +
           static_cast<unsigned long long>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

template <class Call>
void work(Together &together, Call call)
{
    char nothing;
    ++together.ready;
    ::close(together.gate[1]);
    while (::read(together.gate[0], &nothing, 1) > 0)
        ;
    const unsigned long long before = cpuSoFar();
    unsigned long long done = 0;
    for (; !together.stop && call(done); ++done)
        ;
    together.done += done;
    together.microseconds += cpuSoFar() - before;
}

int workThroughLibrary(Together &together, int deviceNo)
{
    SorvaneUSB board;
    if (!board.InitPort(deviceNo))
        return 1;
    work(together, [&](unsigned long long turn) { return board.SetOutputBit(usbOutput12, turn & 1); });
    return 0;
}

int workByHand(Together &together)
{
    hand_board board = {};
    board.file = -1;
    board.eeprom_ready = 1;
    board.locks = ::semget(::ftok("/tmp/Sem_R20Mutex", 1), 0, 0);
    const hand_operation *operation = by_hand_record;
    while (std::strcmp(operation->name, "SetOutputBit") != 0)
        ++operation;
    result result;
    work(together, [&](unsigned long long) { return operation->run(&board, &result); });
    return 0;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc != 5)
        return 2;
    const bool byHand = std::strcmp(argv[1], "hand") == 0;
    const int boards = std::atoi(argv[2]);
    const int each = std::atoi(argv[3]);
    void *shared = ::mmap(nullptr, sizeof(Together), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto &together = *new (shared) Together;
    if (::pipe(together.gate) != 0)
        return 1;
    for (int worker = 0; worker < boards * each; ++worker)
        if (::fork() == 0)
            ::_exit(byHand ? workByHand(together) : workThroughLibrary(together, worker % boards));
    while (together.ready < boards * each) {
        int status;
        if (::waitpid(-1, &status, WNOHANG) > 0) {
            std::fprintf(stderr, "bench_processes: a board cannot be opened\n");
            together.stop = true;
            return 1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const auto start = std::chrono::steady_clock::now();
    ::close(together.gate[1]);
    std::this_thread::sleep_for(std::chrono::duration<double>(std::atof(argv[4])));
    together.stop = true;
    bool failed = false;
    for (int status; ::wait(&status) > 0;)
        failed = failed || status != 0;
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("{\"operations\": %llu, \"seconds\": %.6f, \"cpu\": %.6f}\n", together.done.load(), elapsed,
                static_cast<double>(together.microseconds) / 1e6);
    return failed ? 1 : 0;
}
