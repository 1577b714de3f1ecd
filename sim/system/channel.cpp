#include "sim/system/channel.h"

#include "sim/system/failure.h"

#include <array>
#include <cstring>
#include <sys/socket.h>

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

}  // namespace sim
