// What the kernel driver publishes about a device number: which model sits behind it, and at which USB speed it runs.
#include "api/sorvaneusb.h"
#include "board/models.h"

#include <cstdio>
#include <cstring>

namespace
{

struct Meaning {
    const char *prefix;
    int value;
};

constexpr Meaning products[] = {
    {"Sorvane R20s Board", typeR20s},
    {"Sorvane R20 Board", typeR20},
    {"Sorvane R35 Board", typeR35},
};

constexpr Meaning speeds[] = {
    {"12", fullSpeed},
    {"480", highSpeed},
};

/// The meaning of the first prefix that the attribute starts with; -1 when it cannot be read or none fits.
template <int Count>
int meaningOf(const char *attribute, int deviceNo, const Meaning (&meanings)[Count])
{
    char path[128];
    std::snprintf(path, sizeof path, "/sys/class/Vexa/Vexa_%d/device/%s", deviceNo, attribute);
    std::FILE *file = std::fopen(path, "re");
    if (!file)
        return -1;
    char text[128] = {};
    const std::size_t length = std::fread(text, 1, sizeof text, file);
    std::fclose(file);
    for (const Meaning &meaning : meanings) {
        const std::size_t prefixLength = std::strlen(meaning.prefix);
        if (prefixLength <= length && std::memcmp(text, meaning.prefix, prefixLength) == 0)
            return meaning.value;
    }
    return -1;
}

}  // namespace

int GetBoardType(int deviceNo)
{
    return meaningOf("product", deviceNo, products);
}

int LocalGetBoardSpeed(int deviceNo)
{
    return meaningOf("speed", deviceNo, speeds);
}
