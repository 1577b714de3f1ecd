// What a program of this width hands to the driver: a packet for an R20, a record for the others.
#ifndef SORVANE_TESTS_SUPPORT_DRIVER_CALL_H
#define SORVANE_TESTS_SUPPORT_DRIVER_CALL_H

#include <cstdint>

struct Packet {
    std::uint32_t sendPipe, receivePipe, sendLength, receiveLength;
    unsigned char data[512];
};

struct Record {
    std::int32_t *status;
    std::uint32_t pipeIndex;
    const unsigned char *outData;
    unsigned long outLength;
    unsigned char *inData;
    unsigned long *inLength;
    unsigned char request;
};

constexpr unsigned long packetNumber = 0xc2108100;
constexpr unsigned long recordNumber = 0x8400;

#endif
