#include <fcntl.h>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

#include "tests/processes/trace.h"

namespace tests
{

namespace
{

Trace *map()
{
    const int file = ::openat(AT_FDCWD, tracePath, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file == -1 || ::ftruncate(file, sizeof(Trace)) != 0)
        throw std::runtime_error("no file for the trace");
    void *address = ::mmap(nullptr, sizeof(Trace), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    if (address == MAP_FAILED)
        throw std::runtime_error("the trace cannot be mapped");
    return static_cast<Trace *>(address);
}

Trace *mapped = nullptr;

}  // namespace

Trace &sharedTrace()
{
    if (!mapped)
        mapped = map();
    return *mapped;
}

void startNewTrace()
{
    if (mapped)
        ::munmap(mapped, sizeof(Trace));
    mapped = nullptr;
    ::unlink(tracePath);
}

}  // namespace tests
