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
    Input(const std::uint8_t *data, std::size_t size) : next_(data), left_(size) {}

    template <class Value>
    Value take()
    {
        Value value{};
        fill(&value, sizeof value);
        return value;
    }
    void fill(void *memory, std::size_t count)
    {
        const std::size_t given = std::min(count, left_);
        if (count)
            std::memset(memory, 0, count);
        if (given)
            std::memcpy(memory, next_, given);
        next_ += given;
        left_ -= given;
    }
    /// 0 to most.
    unsigned int upTo(unsigned int most) { return take<std::uint16_t>() % (most + 1); }
    bool ended() const { return left_ == 0; }

private:
    const std::uint8_t *next_;
    std::size_t left_;
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
