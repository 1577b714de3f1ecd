#include "sim/driver/caller_memory.h"

#include <sys/uio.h>

#include <vector>

namespace sim
{

namespace
{

// An address that this program cannot even express belongs to nobody it can reach.
bool expressible(std::uint64_t address, std::size_t size)
{
    return address <= UINTPTR_MAX && size <= UINTPTR_MAX - address;
}

iovec remotePart(std::uint64_t address, std::size_t size)
{
    return {reinterpret_cast<void *>(static_cast<std::uintptr_t>(address)), size};
}

}  // namespace

bool CallerMemory::writable(std::uint64_t address, std::size_t size)
{
    std::vector<unsigned char> now(size);
    return size == 0 || (read(address, now.data(), size) && write(address, now.data(), size));
}

bool ProcessMemory::read(std::uint64_t address, void *to, std::size_t size)
{
    if (!expressible(address, size))
        return false;
    const iovec local{to, size};
    const iovec remote = remotePart(address, size);
    return process_vm_readv(process_, &local, 1, &remote, 1, 0) == static_cast<ssize_t>(size);
}

bool ProcessMemory::write(std::uint64_t address, const void *from, std::size_t size)
{
    if (!expressible(address, size))
        return false;
    const iovec local{const_cast<void *>(from), size};
    const iovec remote = remotePart(address, size);
    return process_vm_writev(process_, &local, 1, &remote, 1, 0) == static_cast<ssize_t>(size);
}

}  // namespace sim
