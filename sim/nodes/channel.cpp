#include "sim/nodes/channel.h"

#include "sim/nodes/failure.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <vector>

namespace sim
{

namespace
{

constexpr std::size_t longestText = 4096;

}  // namespace

std::pair<Channel, Channel> Channel::pair()
{
    int ends[2];
    checked(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), "socketpair");
    return {Channel(ends[0]), Channel(ends[1])};
}

bool Channel::send(const std::string &text, int descriptor)
{
    iovec part{const_cast<char *>(text.data()), text.size()};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    if (descriptor >= 0) {
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        cmsghdr *header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof(int));
        std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
    }
    return ::sendmsg(fd_.get(), &message, MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
}

std::optional<Channel::Message> Channel::receive()
{
    std::array<char, longestText> text{};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    iovec part{text.data(), text.size()};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    ssize_t size;
    do
        size = ::recvmsg(fd_.get(), &message, MSG_CMSG_CLOEXEC);
    while (size < 0 && errno == EINTR);
    if (size <= 0)
        return std::nullopt;
    Message received{std::string(text.data(), static_cast<std::size_t>(size)), OwnedFd()};
    const cmsghdr *header = CMSG_FIRSTHDR(&message);
    if (header && header->cmsg_type == SCM_RIGHTS) {
        int descriptor = -1;
        std::memcpy(&descriptor, CMSG_DATA(header), sizeof descriptor);
        received.descriptor = OwnedFd(descriptor);
    }
    return received;
}

void closeAllBut(std::initializer_list<int> kept)
{
    std::vector<int> sorted(kept);
    std::sort(sorted.begin(), sorted.end());
    unsigned int first = 3;
    for (const int fd : sorted) {
        const auto number = static_cast<unsigned int>(fd);
        if (fd < 3)
            continue;
        if (number > first)
            ::close_range(first, number - 1, 0);
        first = number + 1;
    }
    ::close_range(first, ~0U, 0);
}

void letGoOf(int standardDescriptor)
{
    const OwnedFd nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
    if (nothing && nothing.get() != standardDescriptor)
        ::dup2(nothing.get(), standardDescriptor);
}

}  // namespace sim
