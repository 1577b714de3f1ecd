// Runs every operation once through the library and once by hand, for callgrind to count and for its core to list the
// system calls: each run is one dump, and in the log the lines between two marks, under the operation's name. What can
// be told without it is printed as a line of JSON for each operation; so is where the C library's copying functions
// lie, which have no names in some builds of it.
//
//     bench_counts MODEL    1 R20, 2 R20s, 3 R35
#include "bench/operations.h"
#include "bench/stack_depth.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <exception>
#include <valgrind/callgrind.h>

namespace
{

using bench::Operation;
using bench::Subject;
using bench::Way;

struct Run {
    int outcome;
    unsigned int allocations;
    unsigned int exchanges;
    std::vector<seen> sent;
    result yielded;
    std::size_t stack;
};

Run run(Subject &subject, const Operation &operation, Way way)
{
    const hand_operation &hand = subject.byHand(operation);
    const std::string name = std::string(operation.name) + (way == Way::Library ? "/library" : "/hand");
    Run run = {};
    subject.makeReady(operation, true);
    run.stack = bench::stackDepth([&] { subject.perform(way, operation, hand); });
    // What is done for the first time has been done.
    subject.makeReady(operation, true);
    const unsigned int allocations = driver_allocations;
    VALGRIND_PRINTF("BEGIN %s\n", name.c_str());
    CALLGRIND_ZERO_STATS;
    run.outcome = subject.perform(way, operation, hand);
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    VALGRIND_PRINTF("END\n");
    run.allocations = driver_allocations - allocations;
    run.exchanges = driver_exchanges;
    run.sent.assign(driver_seen, driver_seen + std::min<unsigned int>(driver_exchanges, DRIVER_KEEPS));
    run.yielded = subject.yielded;
    return run;
}

bool sameBytes(const seen &one, const seen &other)
{
    return one.pipe == other.pipe && one.request == other.request && one.length == other.length &&
           std::memcmp(one.payload, other.payload, std::min<unsigned long>(one.length, sizeof one.payload)) == 0;
}

bool sameWork(const Run &library, const Run &hand)
{
    return library.outcome == 1 && hand.outcome == 1 && library.exchanges == hand.exchanges &&
           std::equal(library.sent.begin(), library.sent.end(), hand.sent.begin(), hand.sent.end(), sameBytes) &&
           // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): both begin as zeros
           std::memcmp(&library.yielded, &hand.yielded, sizeof library.yielded) == 0;
}

void printPlace(const char *name, const void *function)
{
    Dl_info place = {};
    dladdr(function, &place);
    std::printf(
        "{\"copies\": \"%s\", \"object\": \"%s\", \"offset\": %lu}\n", name, place.dli_fname,
        static_cast<unsigned long>(static_cast<const char *>(function) - static_cast<const char *>(place.dli_fbase)));
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        return 2;
    try {
        Subject subject(std::atoi(argv[1]));
        printPlace("memcpy", reinterpret_cast<void *>(std::memcpy));
        printPlace("memmove", reinterpret_cast<void *>(std::memmove));
        printPlace("memset", reinterpret_cast<void *>(std::memset));
        for (const Operation &operation : bench::operations()) {
            if (!subject.has(operation))
                continue;
            const Run library = run(subject, operation, Way::Library);
            const Run hand = run(subject, operation, Way::ByHand);
            std::printf("{\"operation\": \"%s\", \"exchanges\": %u, \"same\": %s, \"heap\": [%u, %u], "
                        "\"stack\": [%zu, %zu]}\n",
                        operation.name, library.exchanges, sameWork(library, hand) ? "true" : "false",
                        library.allocations, hand.allocations, library.stack, hand.stack);
        }
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench_counts: %s\n", error.what());
        return 1;
    }
}
