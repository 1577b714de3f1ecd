// What the board of all peers was asked, in the order in which it came: a file that all of them map.
#ifndef SORVANE_TESTS_PROCESSES_TRACE_H
#define SORVANE_TESTS_PROCESSES_TRACE_H

#include <atomic>
#include <cstdint>

namespace tests
{

/// One change of outputs. The same in both widths.
struct Change {
    std::atomic<std::uint32_t> complete;
    std::uint8_t request;
    std::uint8_t payload[10];
    std::uint8_t mirrorOn[5];  // the shared patterns of the device, as they were when the request came
    std::uint8_t mirrorOff[5];
};

struct Trace {
    static constexpr std::uint32_t capacity = 1 << 17;

    std::atomic<std::uint32_t> count;
    std::atomic<std::uint32_t> nextItem;  // of the timestamped stream: item n is the byte n / 256 with the time n % 256
    Change changes[capacity];
};
static_assert(sizeof(Change) == 28 && std::atomic<std::uint32_t>::is_always_lock_free);

/// The device that peers drive unless they are told another.
constexpr int boardDevice = 1;
constexpr const char *tracePath = "/tmp/peers_trace";

/// Maps the trace; makes a new one of zeros where there is none.
Trace &sharedTrace();
/// Lets the next sharedTrace() of every process that starts from now on begin with an empty one.
void startNewTrace();

}  // namespace tests

#endif
