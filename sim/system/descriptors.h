// Descriptors: their owner, and what a process does about those that it was started with.
#ifndef SORVANE_SIM_SYSTEM_DESCRIPTORS_H
#define SORVANE_SIM_SYSTEM_DESCRIPTORS_H

#include <initializer_list>
#include <unistd.h>
#include <utility>

namespace sim
{

/// A descriptor with one owner.
class OwnedFd
{
public:
    OwnedFd() = default;
    explicit OwnedFd(int fd) : fd_(fd) {}
    OwnedFd(OwnedFd &&other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    OwnedFd &operator=(OwnedFd &&other) noexcept
    {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~OwnedFd() { reset(); }

    int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }
    int release() { return std::exchange(fd_, -1); }
    void reset()
    {
        if (fd_ >= 0)
            ::close(std::exchange(fd_, -1));
    }

private:
    int fd_ = -1;
};

/// Closes every descriptor from 3 on but these.
void closeAllBut(std::initializer_list<int> kept);

/// Puts /dev/null in the place of a standard descriptor, so that a pipe of the caller ends when the program ends.
void redirectToNull(int standardDescriptor);

}  // namespace sim

#endif
