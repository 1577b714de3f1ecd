#include "tools/print.h"

#include <algorithm>
#include <ctime>

namespace tools
{

std::string hexadecimal(std::string_view bytes)
{
    std::string text;
    for (const char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%s%02X", text.empty() ? "" : " ", static_cast<unsigned char>(byte));
        text += digits;
    }
    return text;
}

std::string readable(std::string_view bytes)
{
    const std::string_view text = bytes.substr(0, bytes.find('\0'));
    const bool printable = std::all_of(text.begin(), text.end(), [](char c) { return ' ' <= c && c <= '~'; });
    return printable && !text.empty() ? std::string(text) : hexadecimal(bytes);
}

std::string timeOfDay()
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    std::tm local = {};
    ::localtime_r(&now.tv_sec, &local);
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03ld", local.tm_hour, local.tm_min, local.tm_sec,
                  now.tv_nsec / 1000000);
    return text;
}

std::string named(unsigned int number, const std::string &name)
{
    return std::to_string(number) + (name.empty() ? "" : " (" + name + ")");
}

}  // namespace tools
