// What commands print: text, or with --json one object or, for what goes on, a line each. Every reader of a pipe sees
// each line at once.
#ifndef SORVANE_TOOLS_PRINT_H
#define SORVANE_TOOLS_PRINT_H

#include <cstdarg>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace tools
{

using Json = nlohmann::ordered_json;

/// The version of what --json prints; it stands first in every object, in a stream in the first one.
constexpr int jsonVersion = 1;

inline void printLine(const Json &json)
{
    std::puts(json.dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
    std::fflush(stdout);
}

/// The object of a command, with the version in front.
inline void print(const Json &object)
{
    Json all = {{"sorvane", jsonVersion}};
    all.update(object);
    printLine(all);
}

[[gnu::format(printf, 1, 2)]] inline void say(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);  // NOLINT(clang-analyzer-valist.Uninitialized): it is
    va_end(arguments);
    std::fflush(stdout);
}

/// "56 01 A5"
std::string hexadecimal(std::string_view bytes);
/// What a board tells as text, up to its first zero; as bytes where it is not printable.
std::string readable(std::string_view bytes);
/// The machine's time of day, to the millisecond: "14:03:59.125".
std::string timeOfDay();
/// "3 (start)", or the number alone.
std::string named(unsigned int number, const std::string &name);

}  // namespace tools

#endif
