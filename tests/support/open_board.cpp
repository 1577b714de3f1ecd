#include "tests/support/open_board.h"

#include <cstdio>

namespace tests
{

std::string hex(const unsigned char *bytes, std::size_t count)
{
    std::string text;
    for (std::size_t k = 0; k < count; ++k) {
        char byte[4];
        std::snprintf(byte, sizeof byte, "%s%02X", k ? " " : "", bytes[k]);
        text += byte;
    }
    return text;
}

std::string wire(const sim::VirtualBoard &board)
{
    std::string text;
    for (const sim::Exchange &exchange : board.exchanges()) {
        text += text.empty() ? "" : "; ";
        text += std::to_string(exchange.request) + "/" + std::to_string(exchange.pipe);
        if (!exchange.sent.empty())
            text += " " + hex(exchange.sent.data(), exchange.sent.size());
    }
    return text;
}

}  // namespace tests
