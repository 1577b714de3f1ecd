// The board that all peers of a test drive: what their drivers keep of it in a file that all of them map.
#ifndef SORVANE_TESTS_PROCESSES_SHARED_BOARD_H
#define SORVANE_TESTS_PROCESSES_SHARED_BOARD_H

#include <array>
#include <atomic>
#include <cstdint>

namespace tests
{

/// The same in both widths.
struct SharedBoard {
    using Pattern = std::array<std::uint8_t, 5>;

    std::atomic<std::uint32_t> changes;        // of outputs
    std::atomic<std::uint32_t> disagreements;  // changes after which the shared patterns were not the board's
    std::atomic<std::uint32_t> nextItem;  // of the timestamped stream: item n is the byte n / 256 with the time n % 256
    Pattern on, off;
};
static_assert(sizeof(SharedBoard) == 24 && std::atomic<std::uint32_t>::is_always_lock_free);

/// The device that peers drive unless they are told another.
constexpr int boardDevice = 1;
constexpr const char *boardPath = "/tmp/peers_board";

/// Maps the board; makes a new one of zeros where there is none.
SharedBoard &sharedBoard();
/// Lets every process that starts from now on begin with a new one.
void startNewBoard();

}  // namespace tests

#endif
