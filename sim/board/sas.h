// The machine's end of a SAS line, on a port with 9 data bits.
//
// The meanings are the firmware's; here a word with the wake-up bit and the machine's address (7 bits) is a poll of
// this machine. With a first value other than 0 the board answers polls by itself with the second value; otherwise they
// wait for the game. Status: bit 0 a poll has come that was not answered by the board, until the host sends; bit 1 the
// board answers by itself; bit 2 the host has polled within five seconds.
#ifndef SORVANE_SIM_BOARD_SAS_H
#define SORVANE_SIM_BOARD_SAS_H

#include "sim/board/part.h"
#include "sim/core/timeline.h"

namespace sim
{

class SAS : public Part
{
public:
    SAS(const Timeline &timeline, std::function<void(const Words &)> send) : timeline_(timeline), send_(std::move(send))
    {
    }

    unsigned char status() const;

    /// A word from the line: true when the board has answered it by itself.
    bool take(std::uint16_t word);
    void gameHasSent() { pollWaits_ = false; }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    const Timeline &timeline_;
    std::function<void(const Words &)> send_;
    unsigned char machineAddress_ = 0;  // 0: no machine
    bool autoReply_ = false;
    unsigned char replyValue_ = 0;
    bool pollWaits_ = false;
    std::optional<Nanoseconds> lastPoll_;
};

}  // namespace sim

#endif
