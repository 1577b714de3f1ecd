// The diagnostic channel of an R20s or R35. Its format is the firmware's; here a reading answers with what was last
// written, and as long as nothing was, with the bytes of its own request.
#ifndef SORVANE_SIM_BOARD_DIAGNOSTICS_H
#define SORVANE_SIM_BOARD_DIAGNOSTICS_H

#include "sim/board/part.h"

namespace sim
{

class Diagnostics : public Part
{
public:
    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override { data_.clear(); }

private:
    Bytes data_;
};

}  // namespace sim

#endif
