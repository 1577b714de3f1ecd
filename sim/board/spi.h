// The SPI port with a slave at its other end. While the port is off, nothing drives the line and every bit reads as 1.
#ifndef SORVANE_SIM_BOARD_SPI_H
#define SORVANE_SIM_BOARD_SPI_H

#include "sim/board/part.h"
#include "sim/peripherals/spi_slave.h"

namespace sim
{

class SPI : public Part
{
public:
    /// The slave's next answer, whatever it is asked.
    void reply(Bytes bytes) { slave_.answerNext(std::move(bytes)); }
    bool enabled() const { return enabled_; }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override { enabled_ = false; }

private:
    Reply send(Payload payload);

    SPISlave slave_;
    bool enabled_ = false;
};

}  // namespace sim

#endif
