// A descriptor with one owner.
#ifndef SORVANE_SIM_NODES_OWNED_FD_H
#define SORVANE_SIM_NODES_OWNED_FD_H

#include <unistd.h>
#include <utility>

namespace sim
{

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

}  // namespace sim

#endif
