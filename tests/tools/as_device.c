/* Preloaded into sorvane it makes a virtual board look like a real one: its node is a character device. */
#define _GNU_SOURCE
#include <fcntl.h>
#include <sys/stat.h>

__attribute__((visibility("default"))) int fstat(int fd, struct stat *status)
{
    const int result = fstatat(fd, "", status, AT_EMPTY_PATH);
    if ((status->st_mode & S_IFMT) == S_IFREG)
        status->st_mode = (status->st_mode & ~S_IFMT) | S_IFCHR;
    return result;
}
