#include "sim/nodes/node.h"

#include "sim/driver/driver.h"
#include "sim/nodes/caller.h"
#include "sim/nodes/caller_pages.h"

#include <array>
#include <cerrno>
#include <cstring>

namespace sim
{

namespace
{

Node *nodeOf(fuse_req_t request)
{
    return static_cast<Node *>(fuse_req_userdata(request));
}

std::shared_ptr<VirtualBoard> boardOf(fuse_req_t request)
{
    return nodeOf(request)->boards().hold(nodeOf(request)->deviceNo());
}

void getAttributes(fuse_req_t request, fuse_ino_t, fuse_file_info *)
{
    fuse_reply_attr(request, &nodeOf(request)->attributes(), forever);
}

// Who may do it the kernel has looked at. O_TRUNC means nothing to a device, and its times are nobody's.
void setAttributes(fuse_req_t request, fuse_ino_t inode, struct stat *wanted, int which, fuse_file_info *file)
{
    struct stat &attributes = nodeOf(request)->attributes();
    if (which & FUSE_SET_ATTR_MODE)
        attributes.st_mode = S_IFREG | (wanted->st_mode & 07777);
    if (which & FUSE_SET_ATTR_UID)
        attributes.st_uid = wanted->st_uid;
    if (which & FUSE_SET_ATTR_GID)
        attributes.st_gid = wanted->st_gid;
    getAttributes(request, inode, file);
}

void open(fuse_req_t request, fuse_ino_t, fuse_file_info *file)
{
    const std::shared_ptr<VirtualBoard> board = boardOf(request);
    const auto lock = board->lock();
    if (!board->plugged()) {
        fuse_reply_err(request, ENODEV);
        return;
    }
    file->fh = board->generation();
    file->direct_io = 1;
    file->nonseekable = 1;
    // A close that had to be answered would keep a killed program behind somebody else's slow exchange.
    file->noflush = 1;
    fuse_reply_open(request, file);
}

void read(fuse_req_t request, fuse_ino_t, size_t, off_t, fuse_file_info *)
{
    fuse_reply_err(request, EINVAL);
}

void write(fuse_req_t request, fuse_ino_t, const char *, size_t, off_t, fuse_file_info *)
{
    fuse_reply_err(request, EINVAL);
}

// The kernel has fetched the packet and is going to deliver it, but into read-only memory it fails only then, with the
// exchange already done: what has been fetched is put back first.
int exchangePacket(VirtualBoard &board, std::uint64_t address, unsigned char *packet, const DriverCall &call,
                   pid_t caller)
{
    const bool writable = CallerPages(caller).write(address, packet, packetSize);
    return writable ? packetExchange(board, packet, call) : -EFAULT;
}

int exchangeOther(VirtualBoard &board, unsigned int number, std::uint64_t argument, CallerWidth width, DriverCall call,
                  pid_t caller)
{
    CallerPages memory(caller);
    call.wait = [&memory, wait = call.wait](Nanoseconds time) {
        memory.forget();
        return wait(time);
    };
    return driverIoctl(board, number, argument, width, memory, call);
}

void reply(fuse_req_t request, int result, const void *bytes, std::size_t size)
{
    if (result < 0)
        fuse_reply_err(request, -result);
    else
        fuse_reply_ioctl(request, result, bytes, result == 0 ? size : 0);
}

void ioctl(fuse_req_t request, fuse_ino_t, unsigned int number, void *argument, fuse_file_info *file,
           unsigned int flags, const void *in, size_t inSize, size_t)
{
    const std::shared_ptr<VirtualBoard> board = boardOf(request);
    const pid_t caller = fuse_req_ctx(request)->pid;
    const CallerWidth width = flags & FUSE_IOCTL_COMPAT ? CallerWidth::Bits32 : CallerWidth::Bits64;
    const auto address = reinterpret_cast<std::uintptr_t>(argument);
    const DriverCall call{file->fh, [node = nodeOf(request), caller](Nanoseconds time) {
                              node->passTime(time);
                              return !isDying(caller);
                          }};
    if (number == packetRequest && inSize == packetSize && board->model() == Model::R20) {
        std::array<unsigned char, packetSize> packet;
        std::memcpy(packet.data(), in, packet.size());
        const int result = exchangePacket(*board, address, packet.data(), call, caller);
        reply(request, result, packet.data(), packet.size());
    } else {
        reply(request, exchangeOther(*board, number, address, width, call, caller), nullptr, 0);
    }
}

fuse_lowlevel_ops operations()
{
    fuse_lowlevel_ops operations{};
    operations.getattr = getAttributes;
    operations.setattr = setAttributes;
    operations.open = open;
    operations.read = read;
    operations.write = write;
    operations.ioctl = ioctl;
    return operations;
}

}  // namespace

Node::Node(VirtualBoards &boards, int deviceNo, OwnedFd device)
    : boards_(boards), deviceNo_(deviceNo), attributes_(attributesOf(FUSE_ROOT_ID, S_IFREG | 0666)),
      server_(operations(), this, std::move(device))
{
}

}  // namespace sim
