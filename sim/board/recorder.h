// The input recorder of an R20s or R35: samples up to four inputs into the SRAM.
//
// Its units and format are the firmware's. Here the start value is the time of a sample in units of 0.1 ms, a sample is
// one byte whose bit i is the level of the i-th listed input, the first taken at once; the recording ends when the
// length is full. It writes to the page that it was sent and to those behind it: nothing keeps it from pages 13 to 15,
// where the firmware lies and whose contents no SRAM transfer of the library reaches. Status 0 not configured,
// 1 configured, 2 recording, 3 complete; value A is the samples taken, value B those to come.
#ifndef SORVANE_SIM_BOARD_RECORDER_H
#define SORVANE_SIM_BOARD_RECORDER_H

#include "sim/board/inputs.h"
#include "sim/board/sram.h"

namespace sim
{

class Recorder : public Part
{
public:
    enum class State : unsigned char { NotConfigured, Configured, Recording, Complete };

    Recorder(Timeline &timeline, const Inputs &inputs, SRAM &sram) : timeline_(timeline), inputs_(inputs), sram_(sram)
    {
    }

    State state() const { return state_; }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    Reply configure(Payload payload);
    Reply start(Nanoseconds period);
    void sample();

    Timeline &timeline_;
    const Inputs &inputs_;
    SRAM &sram_;
    std::array<unsigned char, 4> recorded_{};
    std::size_t address_ = 0;
    unsigned int length_ = 0;
    unsigned int taken_ = 0;
    Nanoseconds period_{};
    State state_ = State::NotConfigured;
};

}  // namespace sim

#endif
