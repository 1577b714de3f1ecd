#include "shared/key_file.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/ipc.h>
#include <unistd.h>

key_t keyOf(const char *prefix, const char *name, int project)
{
    char path[512];
    const int length = std::snprintf(path, sizeof path, "%s%s", prefix, name);
    if (length < 0 || static_cast<unsigned int>(length) >= sizeof path)
        return -1;
    const int file = ::open(path, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (file != -1)
        ::close(file);
    return ::ftok(path, project);
}
