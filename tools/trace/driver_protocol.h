// What the drivers take, as far as both a caller (../node.cpp) and whoever watches one have to know it.
#ifndef SORVANE_TOOLS_TRACE_DRIVER_PROTOCOL_H
#define SORVANE_TOOLS_TRACE_DRIVER_PROTOCOL_H

#include <cstdint>

namespace driver_protocol
{

constexpr std::uint32_t packetRequest = 0xc2108100;  ///< the R20's `ioctl`
constexpr std::uint32_t recordRequest = 0x8400;      ///< that of the others
constexpr std::uint32_t answerHeader = 2;            ///< of an R20: the request's echo and the status

}  // namespace driver_protocol

#endif
