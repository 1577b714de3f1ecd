// How long the payload of each request may be.
#ifndef SORVANE_SIM_BOARD_PAYLOAD_LENGTHS_H
#define SORVANE_SIM_BOARD_PAYLOAD_LENGTHS_H

#include "board/requests.h"
#include "sim/core/model.h"

namespace sim
{

/// Whether the model has the request at all; a serial request is asked for with pipe 3.
bool understands(Model model, Request request);

/// Whether a payload of this length can be one of the request's.
bool acceptsLength(Model model, Request request, std::size_t length, bool firstSerialPort);

}  // namespace sim

#endif
