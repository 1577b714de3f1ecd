#include "sim/driver/caller_memory.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>
#include <vector>

#if __has_include(<valgrind/memcheck.h>)
#include <valgrind/memcheck.h>
#else
#define VALGRIND_MAKE_MEM_DEFINED(address, size) static_cast<void>(address), static_cast<void>(size)
#endif

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

// Some sandboxes and emulators have no calls into another process's memory. Into the own one leads a way that they all
// have: through a pipe, whose both ends refuse a wrong address too.
class Pipe
{
public:
    Pipe() : opened_(pipe2(ends_.data(), O_CLOEXEC) == 0) {}
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;
    ~Pipe()
    {
        if (!opened_)
            return;
        close(ends_[0]);
        close(ends_[1]);
    }

    bool copy(const void *from, void *to, std::size_t size)
    {
        const auto *source = static_cast<const unsigned char *>(from);
        auto *target = static_cast<unsigned char *>(to);
        for (std::size_t done = 0, part = 0; done < size; done += part) {
            part = std::min(size - done, wholePart);
            const auto moved = static_cast<ssize_t>(part);
            if (!opened_ || ::write(ends_[1], source + done, part) != moved ||
                ::read(ends_[0], target + done, part) != moved)
                return false;
        }
        return true;
    }

private:
    static constexpr std::size_t wholePart = 4096;

    std::array<int, 2> ends_{};
    bool opened_;
};

// The pieces as one system call takes them.
struct Transfer {
    explicit Transfer(std::span<const MemoryPiece> pieces)
    {
        for (const MemoryPiece &piece : pieces) {
            possible = possible && expressible(piece.address, piece.size);
            local.push_back({piece.data, piece.size});
            remote.push_back(remotePart(piece.address, piece.size));
            size += static_cast<ssize_t>(piece.size);
        }
    }

    using Call = ssize_t(pid_t, const iovec *, unsigned long, const iovec *, unsigned long, unsigned long);
    bool carriedOutBy(Call *call, pid_t process) const
    {
        return possible && call(process, local.data(), local.size(), remote.data(), remote.size(), 0) == size;
    }

    std::vector<iovec> local;
    std::vector<iovec> remote;
    ssize_t size = 0;
    bool possible = true;
};

// Memcheck does not see what a process writes into itself by way of the kernel.
void nowDefined(pid_t process, std::uint64_t address, std::size_t size)
{
    if (process == getpid())
        VALGRIND_MAKE_MEM_DEFINED(remotePart(address, size).iov_base, size);
}

bool callIsMissing(pid_t process)
{
    return (errno == ENOSYS || errno == EPERM) && process == getpid();
}

}  // namespace

bool CallerMemory::readAll(std::span<const MemoryPiece> pieces)
{
    return std::all_of(pieces.begin(), pieces.end(),
                       [this](const MemoryPiece &piece) { return read(piece.address, piece.data, piece.size); });
}

bool CallerMemory::writeAll(std::span<const MemoryPiece> pieces)
{
    return std::all_of(pieces.begin(), pieces.end(),
                       [this](const MemoryPiece &piece) { return write(piece.address, piece.data, piece.size); });
}

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
    errno = 0;
    const iovec remote = remotePart(address, size);
    if (process_vm_readv(process_, &local, 1, &remote, 1, 0) == static_cast<ssize_t>(size))
        return true;
    return callIsMissing(process_) && Pipe().copy(remote.iov_base, to, size);
}

// What one call does not do in full is tried piece by piece.
bool ProcessMemory::readAll(std::span<const MemoryPiece> pieces)
{
    return Transfer(pieces).carriedOutBy(process_vm_readv, process_) || CallerMemory::readAll(pieces);
}

bool ProcessMemory::writeAll(std::span<const MemoryPiece> pieces)
{
    if (!Transfer(pieces).carriedOutBy(process_vm_writev, process_))
        return CallerMemory::writeAll(pieces);
    for (const MemoryPiece &piece : pieces)
        nowDefined(process_, piece.address, piece.size);
    return true;
}

bool ProcessMemory::write(std::uint64_t address, const void *from, std::size_t size)
{
    if (!expressible(address, size))
        return false;
    const iovec local{const_cast<void *>(from), size};
    errno = 0;
    const iovec remote = remotePart(address, size);
    if (process_vm_writev(process_, &local, 1, &remote, 1, 0) == static_cast<ssize_t>(size)) {
        nowDefined(process_, address, size);
        return true;
    }
    return callIsMissing(process_) && Pipe().copy(from, remote.iov_base, size);
}

}  // namespace sim
