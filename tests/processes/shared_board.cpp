#include "tests/processes/shared_board.h"

#include <fcntl.h>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace tests
{

namespace
{

SharedBoard *mapped = nullptr;

}  // namespace

SharedBoard &sharedBoard()
{
    if (mapped)
        return *mapped;
    const int file = ::openat(AT_FDCWD, boardPath, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    void *address = MAP_FAILED;
    if (file != -1 && ::ftruncate(file, sizeof *mapped) == 0)
        address = ::mmap(nullptr, sizeof *mapped, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    if (address == MAP_FAILED)
        throw std::runtime_error("the shared board cannot be mapped");
    return *(mapped = static_cast<SharedBoard *>(address));
}

void startNewBoard()
{
    if (mapped)
        ::munmap(std::exchange(mapped, nullptr), sizeof *mapped);
    ::unlink(boardPath);
}

}  // namespace tests
