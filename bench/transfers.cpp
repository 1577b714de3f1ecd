// Transfers of growing length over an R35's SRAM, for callgrind to count: each is one dump under its name. What was
// exchanged is printed as a line of JSON.
#include "bench/operations.h"

#include <cstdio>
#include <exception>
#include <valgrind/callgrind.h>

int main()
{
    try {
        bench::Subject subject(3);
        std::vector<unsigned char> data(16384);
        const std::vector<unsigned char> chunk(60, 1);  // what an R35 at full speed is asked for at a time
        for (const unsigned int bytes : {1U, 60U, 600U, 6000U, 15000U}) {
            for (const bool reading : {false, true}) {
                const std::string name = std::string(reading ? "ReadSRAM " : "WriteSRAM ") + std::to_string(bytes);
                driver_answer(chunk.data(), chunk.size(), 0, 0);
                CALLGRIND_ZERO_STATS;
                const int done = reading ? subject.board.ReadSRAM(0, data.data(), bytes)
                                         : subject.board.WriteSRAM(0, data.data(), bytes);
                CALLGRIND_DUMP_STATS_AT(name.c_str());
                std::printf("{\"transfer\": \"%s\", \"bytes\": %u, \"exchanges\": %u, \"done\": %d}\n", name.c_str(),
                            bytes, driver_exchanges, done);
            }
        }
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench_transfers: %s\n", error.what());
        return 1;
    }
}
