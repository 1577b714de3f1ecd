// Every spelling under which a program may open a board's file or talk to it. Whoever links this answers them itself,
// for its shared libraries too; what does not concern a board goes to the next in line, which is the C library or
// whatever a checking tool has put in front of it.
#include "sim/inprocess/board_descriptors.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace
{

using Open = int(const char *, int, ...);
using OpenAt = int(int, const char *, int, ...);
using CheckedOpen = int(const char *, int);
using CheckedOpenAt = int(int, const char *, int);
using Ioctl = int(int, unsigned long, ...);
using FileOpen = FILE *(const char *, const char *);

template <class Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

int asLibc(int result)
{
    if (result >= 0)
        return result;
    errno = -result;
    return -1;
}

// Only a call that can create a file has a mode.
mode_t modeOf(int flags, va_list arguments)
{
    const bool creates = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return creates ? va_arg(arguments, mode_t) : 0;
}

int openOr(Open *libc, const char *path, int flags, mode_t mode)
{
    const auto board = sim::boardPath(path);
    return board ? asLibc(sim::openBoardFile(*board, flags)) : libc(path, flags, mode);
}

int openAtOr(OpenAt *libc, int directory, const char *path, int flags, mode_t mode)
{
    const auto board = sim::boardPath(path);
    return board ? asLibc(sim::openBoardFile(*board, flags)) : libc(directory, path, flags, mode);
}

int ioctlOr(Ioctl *libc, int descriptor, unsigned long request, void *argument)
{
    const auto result = sim::boardIoctl(descriptor, request, argument);
    return result ? asLibc(*result) : libc(descriptor, request, argument);
}

int flagsOf(const char *mode)
{
    int flags = std::strchr(mode, '+') ? O_RDWR : mode[0] == 'r' ? O_RDONLY : O_WRONLY;
    if (std::strchr(mode, 'e'))
        flags |= O_CLOEXEC;
    return flags;
}

FILE *fileOpenOr(FileOpen *libc, const char *path, const char *mode)
{
    const auto board = sim::boardPath(path);
    if (!board)
        return libc(path, mode);
    const int descriptor = asLibc(sim::openBoardFile(*board, flagsOf(mode)));
    if (descriptor < 0)
        return nullptr;
    FILE *file = fdopen(descriptor, mode);
    if (!file)
        close(descriptor);
    return file;
}

}  // namespace

extern "C" {

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static auto *const libc = next<Open>("open");
    return openOr(libc, path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static auto *const libc = next<Open>("open64");
    return openOr(libc, path, flags, mode);
}

int openat(int directory, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static auto *const libc = next<OpenAt>("openat");
    return openAtOr(libc, directory, path, flags, mode);
}

int openat64(int directory, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static auto *const libc = next<OpenAt>("openat64");
    return openAtOr(libc, directory, path, flags, mode);
}

// The checked spellings have no mode, and no declaration outside the C library.
int __open_2(const char *path, int flags)
{
    static auto *const libc = next<CheckedOpen>("__open_2");
    const auto board = sim::boardPath(path);
    return board ? asLibc(sim::openBoardFile(*board, flags)) : libc(path, flags);
}

int __open64_2(const char *path, int flags)
{
    static auto *const libc = next<CheckedOpen>("__open64_2");
    const auto board = sim::boardPath(path);
    return board ? asLibc(sim::openBoardFile(*board, flags)) : libc(path, flags);
}

int __openat_2(int directory, const char *path, int flags)
{
    static auto *const libc = next<CheckedOpenAt>("__openat_2");
    const auto board = sim::boardPath(path);
    return board ? asLibc(sim::openBoardFile(*board, flags)) : libc(directory, path, flags);
}

int __openat64_2(int directory, const char *path, int flags)
{
    static auto *const libc = next<CheckedOpenAt>("__openat64_2");
    const auto board = sim::boardPath(path);
    return board ? asLibc(sim::openBoardFile(*board, flags)) : libc(directory, path, flags);
}

int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    static auto *const libc = next<Ioctl>("ioctl");
    return ioctlOr(libc, descriptor, request, argument);
}

// A 32-bit program with 64-bit time calls it by this name.
int __ioctl_time64(int descriptor, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    static auto *const libc = next<Ioctl>(sizeof(long) == 4 ? "__ioctl_time64" : "ioctl");
    return ioctlOr(libc, descriptor, request, argument);
}

FILE *fopen(const char *path, const char *mode)
{
    static auto *const libc = next<FileOpen>("fopen");
    return fileOpenOr(libc, path, mode);
}

FILE *fopen64(const char *path, const char *mode)
{
    static auto *const libc = next<FileOpen>("fopen64");
    return fileOpenOr(libc, path, mode);
}
}
