// How deep a call reaches into the stack.
#ifndef SORVANE_BENCH_STACK_DEPTH_H
#define SORVANE_BENCH_STACK_DEPTH_H

#include <algorithm>
#include <functional>
#include <ucontext.h>
#include <vector>

namespace bench
{

/// Runs the call on a painted stack of its own and returns the number of bytes down to the deepest that was written.
inline std::size_t stackDepth(const std::function<void()> &call)
{
    constexpr unsigned char paint = 0xA5;
    static const std::function<void()> *todo;
    std::vector<unsigned char> stack(128 * 1024, paint);
    ucontext_t here, there;
    getcontext(&there);
    there.uc_stack.ss_sp = stack.data();
    there.uc_stack.ss_size = stack.size();
    there.uc_link = &here;
    todo = &call;
    makecontext(
        &there, [] { (*todo)(); }, 0);
    swapcontext(&here, &there);
    todo = nullptr;
    const auto deepest = std::find_if(stack.begin(), stack.end(), [](unsigned char byte) { return byte != paint; });
    return static_cast<std::size_t>(stack.end() - deepest);
}

}  // namespace bench

#endif
