#include "sim/nodes/caller_pages.h"

#include <algorithm>
#include <cstring>

namespace sim
{

const CallerPages::Page *CallerPages::page(std::uint64_t number)
{
    for (const Page &known : pages_) {
        if (known.number == number)
            return &known;
    }
    Page &fetched = pages_.emplace_back();
    fetched.number = number;
    if (memory_.read(number * pageSize, fetched.bytes.data(), pageSize))
        return &fetched;
    pages_.pop_back();
    return nullptr;
}

bool CallerPages::read(std::uint64_t address, void *to, std::size_t size)
{
    for (std::size_t done = 0, part = 0; done < size; done += part) {
        const std::uint64_t at = address + done;
        part = std::min(size - done, pageSize - static_cast<std::size_t>(at % pageSize));
        const Page *known = page(at / pageSize);
        if (!known)
            return false;
        std::memcpy(static_cast<unsigned char *>(to) + done, known->bytes.data() + at % pageSize, part);
    }
    return true;
}

bool CallerPages::write(std::uint64_t address, const void *from, std::size_t size)
{
    forget();
    return memory_.write(address, from, size);
}

bool CallerPages::writeAll(std::span<const MemoryPiece> pieces)
{
    forget();
    return memory_.writeAll(pieces);
}

}  // namespace sim
