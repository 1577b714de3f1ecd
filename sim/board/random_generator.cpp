#include "sim/board/random_generator.h"

namespace sim
{

std::uint32_t RandomGenerator::following() const
{
    return state_ * 1664525U + 1013904223U;
}

std::optional<Reply> RandomGenerator::answer(Request request, Payload payload)
{
    switch (request) {
    case Request::EnableRandomNumberGenerator:
        return perform([this, seed = u32le(payload, 0)] {
            enabled_ = true;
            state_ = seed;
        });
    case Request::DisableRandomNumberGenerator:
        return perform([this] { enabled_ = false; });
    case Request::GetRandomNumber: {
        if (!enabled_)
            return refuse(statusDisabled);
        // The upper half varies most.
        const std::uint32_t number = following() >> 16;
        return tell({lowByte(number), highByte(number)}, [this] { state_ = following(); });
    }
    default:
        return std::nullopt;
    }
}

}  // namespace sim
