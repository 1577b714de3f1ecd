#include "protocol/families.h"

#include <algorithm>

namespace protocol
{

namespace
{

bool chooses(const Choice &choice, std::span<const unsigned char> payload)
{
    return payload.size() >= choice.place + choice.bytes.size() &&
           std::equal(choice.bytes.begin(), choice.bytes.end(), payload.begin() + choice.place);
}

}  // namespace

std::span<const Family> families()
{
    static const Family all[] = {
        {"Inputs and outputs", inputAndOutputOperations()},
        {"Pulsed inputs and hoppers", coinOperations()},
        {"Reels", reelOperations()},
        {"Recorder and diagnostics", recorderOperations()},
        {"Serial ports", serialOperations()},
        {"Polled host", polledHostOperations()},
        {"SAS", sasOperations()},
        {"EEPROM and SRAM", memoryOperations()},
        {"Firmware download", firmwareOperations()},
        {"SPI and SEC", spiOperations()},
        {"Security, clock and random numbers", securityOperations()},
        {"Identity", identityOperations()},
    };
    return all;
}

const Operation *findOperation(Model model, int pipe, unsigned char request, std::span<const unsigned char> payload)
{
    for (const Family &family : families()) {
        for (const Operation &operation : family.operations) {
            const bool served = operation.request == request && operation.pipes.first <= pipe &&
                                pipe <= operation.pipes.last && operation.models >> static_cast<int>(model) & 1;
            if (served && (!operation.choice.bytes.size() || chooses(operation.choice, payload)))
                return &operation;
        }
    }
    return nullptr;
}

}  // namespace protocol
