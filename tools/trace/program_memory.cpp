#include "tools/trace/program_memory.h"

#include "sim/system/descriptors.h"

#include <fcntl.h>
#include <string>
#include <sys/uio.h>

namespace trace
{

bool readMemory(pid_t thread, std::uint64_t address, void *to, std::size_t size)
{
    if (address <= UINTPTR_MAX && size <= UINTPTR_MAX - address) {
        const iovec here = {to, size};
        const iovec there = {reinterpret_cast<void *>(static_cast<std::uintptr_t>(address)), size};
        return ::process_vm_readv(thread, &here, 1, &there, 1, 0) == static_cast<ssize_t>(size);
    }
    if (address > INT64_MAX)
        return false;
    const std::string path = "/proc/" + std::to_string(thread) + "/mem";
    const sim::OwnedFd memory(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return memory && ::pread64(memory.get(), to, size, static_cast<off64_t>(address)) == static_cast<ssize_t>(size);
}

}  // namespace trace
