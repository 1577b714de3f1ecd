// A process that is stopped at the system calls of a part of its life, or between two instructions.
//
// It is written for both widths: the kernel tells where a process stands in the same form for either.
#ifndef SORVANE_TESTS_PROCESSES_TRACER_H
#define SORVANE_TESTS_PROCESSES_TRACER_H

#include "tests/processes/peer.h"

#include <string>

namespace tests
{

/// Loading (from the first key file until the process says that it is ready), what a line asks of it, or leaving.
struct Part {
    std::string line;  // empty: loading
    bool loading() const { return line.empty(); }
    bool leaving() const { return line == "quit"; }
};

class Traced
{
public:
    explicit Traced(const std::string &program);

    /// Whether this machine lets a process be traced; under an emulator of other processors it does not.
    static bool possible();

    /// Goes on untraced to where the part begins and stops there, before or after a system call.
    void beginWith(const Part &part);
    /// To the next stop of the part: before or after a system call. False when the part is over; it is stopped then,
    /// or has ended.
    bool next();
    /// The call of this stop, and the side of it: "semop before".
    std::string where() const;
    /// One instruction. False when the next instruction is a system call, which is not made then.
    bool stepInstruction();
    /// That many instructions at once, none of them a system call.
    bool stepInstructions(std::size_t count);
    /// Lets it go on by itself.
    void release();

    Peer peer;

private:
    void resume(int request);
    bool isStart(const Part &part) const;
    bool isOver() const;
    void look();
    bool isInTemporary(unsigned long long path) const;

    Part part_;
    bool alive_ = true;
    bool atCall_ = false;
    bool before_ = false;
    bool compat_ = false;                // a 32-bit process
    unsigned long long number_ = ~0ULL;  // none yet
    unsigned long long arguments_[6] = {};
    unsigned long long instruction_ = 0;
};

}  // namespace tests

#endif
