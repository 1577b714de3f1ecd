#include "sim/peripherals/spi_slave.h"

#include <numeric>

namespace sim
{

namespace
{

constexpr std::size_t secOverhead = 4;

unsigned char checkSumOf(Payload bytes)
{
    return lowByte(std::accumulate(bytes.begin(), bytes.end(), 0U));
}

bool isSECFrame(Payload sent)
{
    return sent.size() >= secOverhead && sent[2] + secOverhead == sent.size() &&
           checkSumOf(sent.first(sent.size() - 1)) == sent.back();
}

Bytes secFrame(Payload asked, std::size_t length)
{
    const std::size_t dataLength = length - secOverhead;
    const Payload data = asked.subspan(3, asked[2]);
    Bytes frame{asked[0], asked[1], lowByte(static_cast<std::uint32_t>(dataLength))};
    for (std::size_t i = 0; i < dataLength; ++i)
        frame.push_back(data.empty() ? lowByte(static_cast<std::uint32_t>(i)) : data[i % data.size()]);
    frame.push_back(checkSumOf(frame));
    return frame;
}

}  // namespace

Bytes SPISlave::answer(Payload sent, std::size_t length) const
{
    if (scripted_.empty() && length >= secOverhead && isSECFrame(sent))
        return secFrame(sent, length);
    Bytes bytes = scripted_.empty() ? toBytes(sent) : scripted_.front();
    bytes.resize(length);
    return bytes;
}

void SPISlave::answered()
{
    if (!scripted_.empty())
        scripted_.pop_front();
}

}  // namespace sim
