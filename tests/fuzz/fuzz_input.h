// The bytes that a fuzzer made, taken one value after the other. Behind their end everything is zero.
#ifndef SORVANE_TESTS_FUZZ_FUZZ_INPUT_H
#define SORVANE_TESTS_FUZZ_FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace fuzz
{

class Input
{
public:
    Input(const std::uint8_t *data, std::size_t size) : next(data), left(size) {}

    template <class Value>
    Value take()
    {
        Value value{};
        fill(&value, sizeof value);
        return value;
    }
    void fill(void *memory, std::size_t count)
    {
        const std::size_t given = std::min(count, left);
        if (count)
            std::memset(memory, 0, count);
        if (given)
            std::memcpy(memory, next, given);
        next += given;
        left -= given;
    }
    /// 0 to most.
    unsigned int upTo(unsigned int most) { return take<std::uint16_t>() % (most + 1); }
    bool ended() const { return left == 0; }

private:
    const std::uint8_t *next;
    std::size_t left;
};

/// Ends the run where a promise is broken that no sanitizer knows of.
inline void require(bool holds, const char *promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

}  // namespace fuzz

#endif
