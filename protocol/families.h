// The tables of operations, a file a family, and the search in them.
#ifndef SORVANE_PROTOCOL_FAMILIES_H
#define SORVANE_PROTOCOL_FAMILIES_H

#include "protocol/operation.h"

#include <span>

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

/// The operations of one kind of device, for whoever shows them all.
struct Family {
    const char *title;
    std::span<const Operation> operations;
};

/// Every family; every row of it has static storage.
std::span<const Family> families();

/// The row for this request, or null when the boards of the model know none, with this payload, on this pipe.
const Operation *findOperation(Model model, int pipe, unsigned char request, std::span<const unsigned char> payload);

}  // namespace protocol

#endif
