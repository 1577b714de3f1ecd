#include "sim/nodes/caller_pages.h"

#include <algorithm>
#include <cstring>
#include <sys/uio.h>

namespace sim
{

namespace
{

constexpr std::size_t mostPieces = 8;

iovec at(std::uint64_t address, std::size_t size)
{
    return {reinterpret_cast<void *>(static_cast<std::uintptr_t>(address)), size};
}

}  // namespace

const CallerPages::Page *CallerPages::page(std::uint64_t number)
{
    for (const Page &known : pages_) {
        if (known.number == number)
            return &known;
    }
    Page &fetched = pages_.emplace_back(number);
    const iovec local{fetched.bytes.data(), pageSize};
    const iovec remote = at(number * pageSize, pageSize);
    if (::process_vm_readv(caller_, &local, 1, &remote, 1, 0) == static_cast<ssize_t>(pageSize))
        return &fetched;
    pages_.pop_back();
    return nullptr;
}

bool CallerPages::read(std::uint64_t address, void *to, std::size_t size)
{
    for (std::size_t done = 0, part = 0; done < size; done += part) {
        const std::uint64_t from = address + done;
        part = std::min(size - done, pageSize - static_cast<std::size_t>(from % pageSize));
        const Page *known = page(from / pageSize);
        if (!known)
            return false;
        std::memcpy(static_cast<unsigned char *>(to) + done, known->bytes.data() + from % pageSize, part);
    }
    return true;
}

bool CallerPages::write(std::uint64_t address, const void *from, std::size_t size)
{
    forget();
    const iovec local{const_cast<void *>(from), size};
    const iovec remote = at(address, size);
    return ::process_vm_writev(caller_, &local, 1, &remote, 1, 0) == static_cast<ssize_t>(size);
}

bool CallerPages::writeAll(std::span<const MemoryPiece> pieces)
{
    if (pieces.size() > mostPieces)
        return CallerMemory::writeAll(pieces);
    forget();
    std::array<iovec, mostPieces> local, remote;
    std::size_t size = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        local[i] = {pieces[i].data, pieces[i].size};
        remote[i] = at(pieces[i].address, pieces[i].size);
        size += pieces[i].size;
    }
    return ::process_vm_writev(caller_, local.data(), pieces.size(), remote.data(), pieces.size(), 0) ==
           static_cast<ssize_t>(size);
}

}  // namespace sim
