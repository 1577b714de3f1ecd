// How a board and its parts write down what happens on it.
//
// States (journal::Event) are compared with what they were after everything that happens, so that no part has to think
// of them; what comes and goes, bytes and coins, its part tells by itself.
#ifndef SORVANE_SIM_BOARD_DIARY_H
#define SORVANE_SIM_BOARD_DIARY_H

#include "journal/ring.h"
#include "sim/core/bytes.h"
#include "sim/core/timeline.h"

namespace sim
{

class Diary
{
public:
    explicit Diary(const Timeline &timeline) : timeline_(timeline) {}

    const journal::Ring &events() const { return ring_; }
    /// The number of the board in its events; set before the first.
    void setDevice(int number) { device_ = number; }
    int device() const { return device_; }

    /// An event of this moment, for the caller to fill in.
    journal::Event &note(journal::Kind kind, unsigned int part = 0);
    void noteChange(journal::Kind kind, unsigned int part, std::uint32_t was, std::uint32_t is,
                    journal::Aspect aspect = journal::Aspect::None);
    /// Bytes of a memory before and after a write.
    void noteWritten(journal::Kind kind, std::size_t address, Payload before, Payload after);

private:
    const Timeline &timeline_;
    journal::Ring ring_;
    int device_ = 0;
};

inline void assign(std::string &text, Payload bytes)
{
    text.assign(bytes.begin(), bytes.end());
}

}  // namespace sim

#endif
