// What every part of a board has in common: it answers the requests that are its own.
#ifndef SORVANE_SIM_BOARD_PART_H
#define SORVANE_SIM_BOARD_PART_H

#include "board/requests.h"
#include "sim/board/board_status.h"
#include "sim/core/bytes.h"

#include <functional>
#include <optional>
#include <utility>

namespace sim
{

/// What a part would answer. Nothing on the board changes before `delivered` has run: an exchange whose answer cannot
/// reach the caller has not happened.
struct Reply {
    int status = 0;
    Bytes bytes;
    std::function<void()> delivered;
};

inline Reply refuse(int status)
{
    return {status, {}, {}};
}

inline Reply tell(Bytes bytes, std::function<void()> delivered = {})
{
    return {0, std::move(bytes), std::move(delivered)};
}

inline Reply perform(std::function<void()> delivered)
{
    return {0, {}, std::move(delivered)};
}

class Part
{
public:
    Part() = default;
    Part(const Part &) = delete;
    Part &operator=(const Part &) = delete;
    virtual ~Part() = default;

    /// What this part answers to one of its requests; nothing to any other. The payload's length has been checked
    /// (see payload_lengths.h); a serial request comes with the code of port 0, whatever its port.
    virtual std::optional<Reply> answer(Request request, Payload payload) = 0;

    /// The board has lost its power: whatever no battery holds is as it was when the board was built.
    virtual void powerLost() {}

    /// Nor is there a battery: what it holds is lost as well.
    virtual void backupLost() {}
};

}  // namespace sim

#endif
