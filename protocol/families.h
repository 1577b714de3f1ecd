// The tables of operations, a file a family.
#ifndef SORVANE_PROTOCOL_FAMILIES_H
#define SORVANE_PROTOCOL_FAMILIES_H

#include "protocol/operation.h"

namespace protocol
{

std::span<const Operation> inputAndOutputOperations();
std::span<const Operation> coinOperations();
std::span<const Operation> reelOperations();
std::span<const Operation> recorderOperations();
std::span<const Operation> serialOperations();
std::span<const Operation> polledHostOperations();
std::span<const Operation> sasOperations();
std::span<const Operation> memoryOperations();
std::span<const Operation> firmwareOperations();
std::span<const Operation> spiOperations();
std::span<const Operation> securityOperations();
std::span<const Operation> identityOperations();

}  // namespace protocol

#endif
