// The time of every operation, through the library and by hand, on an R20 and an R35, with a driver that answers at
// once. scripts/bench has the repetitions take turns and compares their medians.
#include "bench/operations.h"

#include <benchmark/benchmark.h>

using bench::Operation;
using bench::Subject;
using bench::Way;

namespace
{

void measure(benchmark::State &state, Subject &subject, const Operation &operation, Way way)
{
    const hand_operation &hand = subject.byHand(operation);
    subject.makeReady(operation, false);
    for (auto _ : state)  // NOLINT(clang-analyzer-deadcode.DeadStores): the loop of Google Benchmark
        if (!subject.perform(way, operation, hand)) {
            state.SkipWithError("the operation failed");
            return;
        }
}

}  // namespace

int main(int argc, char **argv)
{
    Subject r20(1);
    Subject r35(3);
    for (Subject *subject : {&r20, &r35})
        for (const Operation &operation : bench::operations()) {
            if (!subject->has(operation))
                continue;
            const std::string name = std::string(operation.name) + (subject == &r20 ? "/R20/" : "/R35/");
            benchmark::RegisterBenchmark((name + "library").c_str(), measure, std::ref(*subject), operation,
                                         Way::Library);
            benchmark::RegisterBenchmark((name + "hand").c_str(), measure, std::ref(*subject), operation, Way::ByHand);
        }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
