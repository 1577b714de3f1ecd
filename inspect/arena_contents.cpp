#include "inspect/arena_contents.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace
{

constexpr std::size_t headerBytes = 128;
constexpr std::size_t blockBytes = 124;
constexpr std::uint32_t blocksInArena = 526;
constexpr int devices = ArenaContents::deviceCount;

struct Object {
    const char *name;
    std::uint32_t blocks;
};
constexpr Object objects[ArenaContents::objectCount] = {
    {"OutOnCopies", 2}, {"OutOffCopies", 2}, {"R20EEPROMS", 3}, {"R20BUFFERS", 35}};

using Bytes = std::vector<unsigned char>;

std::uint32_t u32(const Bytes &bytes, std::size_t place)
{
    std::uint32_t value;
    std::memcpy(&value, bytes.data() + place, sizeof value);
    return value;
}

unsigned int u16(const Bytes &bytes, std::size_t place)
{
    return bytes[place] | bytes[place + 1] << 8;
}

std::string nameAt(const Bytes &bytes, std::size_t place)
{
    const char *name = reinterpret_cast<const char *>(bytes.data() + place);
    return std::string(name, ::strnlen(name, 50));
}

void lookAtHeader(const Bytes &bytes, ArenaContents &contents)
{
    const std::string name = nameAt(bytes, 0), mutex = nameAt(bytes, 56);
    if (name != "R20SharedMemory" || u32(bytes, 52) != 0)
        add(contents.findings, "header: name \"%s\", id %u", name.c_str(), u32(bytes, 52));
    if (mutex != "R20Mutex" || u32(bytes, 108) != 10 || u32(bytes, 112) != 0)
        add(contents.findings, "header: mutex \"%s\" number %u of %u", mutex.c_str(), u32(bytes, 112), u32(bytes, 108));
    if (u32(bytes, 116) != segmentBytes || u32(bytes, 120) != 1 || u32(bytes, 124) != blocksInArena)
        add(contents.findings, "header: size %u, built %u times, %u blocks", u32(bytes, 116), u32(bytes, 120),
            u32(bytes, 124));
}

void lookAtPatterns(const Bytes &bytes, std::size_t data, int object, ArenaContents &contents)
{
    for (int device = 0; device < devices; ++device) {
        ArenaContents::Device &shared = contents.devices[device];
        const auto pattern = bytes.data() + data + ArenaContents::patternBytes * static_cast<std::size_t>(device);
        std::memcpy(object == 0 ? shared.onPattern : shared.offPattern, pattern, ArenaContents::patternBytes);
    }
}

void lookAtEEPROMs(const Bytes &bytes, std::size_t data, ArenaContents &contents)
{
    for (int device = 0; device < devices; ++device) {
        const std::size_t entry = data + 8 * static_cast<std::size_t>(device);
        const unsigned int highest = u16(bytes, entry + 2);
        contents.devices[device].eepromConfigured = bytes[entry + 6] == 1;
        if (bytes[entry + 6] > 1 || bytes[entry + 7] != 0)
            add(contents.findings, "EEPROM of device %d: flag %u, reserved byte %u", device, bytes[entry + 6],
                bytes[entry + 7]);
        else if (bytes[entry + 6] == 1 && (bytes[entry] == 0 || highest == 0))
            add(contents.findings, "EEPROM of device %d is marked as configured without a record", device);
    }
}

void lookAtBuffers(const Bytes &bytes, std::size_t data, ArenaContents &contents)
{
    for (int device = 0; device < devices; ++device) {
        const std::size_t buffer = data + 260 * static_cast<std::size_t>(device);
        const unsigned int count = u16(bytes, buffer), index = u16(bytes, buffer + 2);
        // One that dies while it takes over a batch leaves 0 bytes and the old index: that is an empty buffer.
        if (count > 255 || (count != 0 && index > count))
            add(contents.findings, "receive buffer of device %d: %u of %u bytes handed out", device, index, count);
    }
}

void lookAtObject(const Bytes &bytes, std::size_t run, int object, ArenaContents &contents)
{
    const char *name = objects[object].name;
    if (contents.useCounts[object] != 0)
        return add(contents.findings, "%s exists twice", name);
    contents.useCounts[object] = u32(bytes, run + 116);
    if (u32(bytes, run + 120) != objects[object].blocks)
        add(contents.findings, "%s has %u blocks", name, u32(bytes, run + 120));
    if (bytes[run + 56] != 0 || u32(bytes, run + 108) != 1 || u32(bytes, run + 112) != 0)
        add(contents.findings, "%s: its mutex ID is not the empty one", name);
    if (object < 2)
        lookAtPatterns(bytes, run + blockBytes, object, contents);
    if (object == 2)
        lookAtEEPROMs(bytes, run + blockBytes, contents);
    if (object == 3)
        lookAtBuffers(bytes, run + blockBytes, contents);
}

void lookAtRun(const Bytes &bytes, std::size_t run, ArenaContents &contents)
{
    const std::string name = nameAt(bytes, run);
    const std::uint32_t useCount = u32(bytes, run + 116);
    if (name.empty() && useCount != 0)
        return add(contents.remarks, "a run is used but has no name: whoever made it died before");
    if (name.empty())
        return;
    if (useCount == 0)
        return add(contents.findings, "free run with the name \"%s\"", name.c_str());
    for (int object = 0; object < ArenaContents::objectCount; ++object)
        if (name == objects[object].name && u32(bytes, run + 52) == 0)
            return lookAtObject(bytes, run, object, contents);
    add(contents.findings, "unknown object \"%s\"", name.c_str());
}

void lookAtRuns(const Bytes &bytes, ArenaContents &contents)
{
    std::uint32_t index = 0;
    while (index < blocksInArena) {
        const std::size_t run = headerBytes + blockBytes * index;
        const std::uint32_t length = u32(bytes, run + 120);
        if (length == 0 || length > blocksInArena - index)
            return add(contents.findings, "the run at block %u has a length of %u", index, length);
        lookAtRun(bytes, run, contents);
        index += length;
    }
    // Every process uses the objects in this order; one that is killed meanwhile has used the first ones only.
    for (int k = 1; k < ArenaContents::objectCount; ++k)
        if (contents.useCounts[k] > contents.useCounts[k - 1])
            add(contents.findings, "%s has %u uses, %s only %u", objects[k].name, contents.useCounts[k],
                objects[k - 1].name, contents.useCounts[k - 1]);
}

}  // namespace

void add(std::vector<std::string> &lines, const char *format, ...)
{
    char line[200];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);  // NOLINT(clang-analyzer-valist.Uninitialized): it is
    va_end(arguments);
    lines.emplace_back(line);
}

void lookAtContents(const std::vector<unsigned char> &bytes, ArenaContents &contents)
{
    const bool isBuilt = u32(bytes, 124) != 0;
    const auto behindHeader = bytes.begin() + static_cast<std::ptrdiff_t>(headerBytes);
    if (!isBuilt && std::all_of(behindHeader, bytes.end(), [](unsigned char byte) { return byte == 0; }))
        return add(contents.remarks, "the arena is not built: whoever made the segment died before");
    lookAtHeader(bytes, contents);
    lookAtRuns(bytes, contents);
}
