#include "sim/core/bell.h"

#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace sim
{

void Bell::ring()
{
    if (!anybody_)
        return;
    const std::lock_guard lock(mutex_);
    for (const int listener : listeners_)
        ::eventfd_write(listener, 1);
}

Bell::Listener::Listener(Bell &bell) : bell_(bell), descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (descriptor_ == -1)
        throw std::system_error(errno, std::generic_category(), "listening to the boards");
    const std::lock_guard lock(bell_.mutex_);
    bell_.listeners_.push_back(descriptor_);
    bell_.anybody_ = true;
}

Bell::Listener::~Listener()
{
    {
        const std::lock_guard lock(bell_.mutex_);
        std::erase(bell_.listeners_, descriptor_);
        bell_.anybody_ = !bell_.listeners_.empty();
    }
    ::close(descriptor_);
}

void Bell::Listener::heard() const
{
    eventfd_t rings = 0;
    ::eventfd_read(descriptor_, &rings);
}

}  // namespace sim
