#include "sim/inprocess/board_paths.h"

#include "sim/board/virtual_boards.h"

#include <string_view>

namespace sim
{

namespace
{

constexpr std::string_view nodePrefix = "/dev/Vexa_";
constexpr std::string_view attributePrefix = "/sys/class/Vexa/Vexa_";

// Takes a device number as the driver writes it, without leading zeros, off the front of the text.
std::optional<int> takeNumber(std::string_view &text)
{
    std::size_t digits = 0;
    int number = 0;
    while (digits < text.size() && digits < 3 && text[digits] >= '0' && text[digits] <= '9')
        number = 10 * number + (text[digits++] - '0');
    if (digits == 0 || (digits > 1 && text[0] == '0') || number >= deviceCount)
        return std::nullopt;
    text.remove_prefix(digits);
    return number;
}

}  // namespace

std::optional<BoardPath> boardPath(const char *path)
{
    std::string_view text = path ? path : "";
    const bool node = text.starts_with(nodePrefix);
    if (!node && !text.starts_with(attributePrefix))
        return std::nullopt;
    text.remove_prefix(node ? nodePrefix.size() : attributePrefix.size());
    const std::optional<int> number = takeNumber(text);
    if (!number)
        return std::nullopt;
    if (node && text.empty())
        return BoardPath{BoardPath::File::Node, *number};
    if (!node && text == "/device/product")
        return BoardPath{BoardPath::File::Product, *number};
    if (!node && text == "/device/speed")
        return BoardPath{BoardPath::File::Speed, *number};
    return std::nullopt;
}

}  // namespace sim
