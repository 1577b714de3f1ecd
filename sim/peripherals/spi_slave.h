// A slave on the SPI port: it echoes what it is sent, and answers a correct SEC frame with a correct SEC frame of the
// length that is asked for, with the same two header bytes and the same data repeated.
#ifndef SORVANE_SIM_PERIPHERALS_SPI_SLAVE_H
#define SORVANE_SIM_PERIPHERALS_SPI_SLAVE_H

#include "sim/core/bytes.h"

#include <deque>

namespace sim
{

class SPISlave
{
public:
    /// Scripts one of the next answers; it is cut or filled with 0 to the length that is asked for.
    void answerNext(Bytes bytes) { scripted_.push_back(std::move(bytes)); }

    /// What it would answer in so many bytes, without answering yet.
    Bytes answer(Payload sent, std::size_t length) const;
    /// The answer has been taken.
    void answered();

private:
    std::deque<Bytes> scripted_;
};

}  // namespace sim

#endif
