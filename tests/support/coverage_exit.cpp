// In the build that counts lines: sorvane-sim's processes end as they stand, and their counts go with them unless they
// are written before.
#include <sys/syscall.h>
#include <unistd.h>

extern "C" void __gcov_dump();

extern "C" void _exit(int status)
{
    __gcov_dump();
    ::syscall(SYS_exit_group, status);
    for (;;) {
    }
}
