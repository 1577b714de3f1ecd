#include "sim/board/spi.h"

namespace sim
{

namespace
{

constexpr unsigned int mostBits = 160;

std::size_t bytesFor(unsigned int bits)
{
    return (bits + 7) / 8;
}

}  // namespace

Reply SPI::send(Payload payload)
{
    const Payload data = payload.subspan(3);
    if (payload[0] == 0 || payload[0] > mostBits || payload[1] > mostBits)
        return refuse(statusWrongValue);
    if (data.size() != bytesFor(payload[0]))
        return refuse(statusWrongLength);
    const std::size_t length = bytesFor(payload[1]);
    if (!enabled_)
        return tell(Bytes(length, 0xFF));
    return tell(slave_.answer(data, length), [this] { slave_.answered(); });
}

std::optional<Reply> SPI::answer(Request request, Payload payload)
{
    switch (request) {
    case Request::EnableSPI:
    case Request::DisableSPI:
        return perform([this, on = request == Request::EnableSPI] { enabled_ = on; });
    case Request::SendSPI:
        return send(payload);
    default:
        return std::nullopt;
    }
}

}  // namespace sim
