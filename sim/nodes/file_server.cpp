#include "sim/nodes/file_server.h"

#include "sim/nodes/caller.h"
#include "sim/system/failure.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <linux/fuse.h>
#include <poll.h>
#include <unistd.h>

namespace sim
{

namespace
{

const fuse_in_header &headerOf(const fuse_buf &request)
{
    return *static_cast<const fuse_in_header *>(request.mem);
}

}  // namespace

FileServer::FileServer(const fuse_lowlevel_ops &operations, void *context, OwnedFd device)
{
    char name[] = "sorvane-sim";
    char *arguments[] = {name, nullptr};
    fuse_args args = FUSE_ARGS_INIT(1, arguments);
    session_ = fuse_session_new(&args, &operations, sizeof operations, context);
    if (!session_)
        fail("starting a file server");
    const std::string mounted = "/dev/fd/" + std::to_string(device.get());
    if (fuse_session_mount(session_, mounted.c_str()) != 0)
        fail("taking over a file system");
    device.release();
    thread_ = std::thread([this] { serve(); });
}

FileServer::~FileServer()
{
    if (thread_.joinable())
        thread_.detach();
}

void FileServer::passTime(Nanoseconds duration)
{
    const auto end = std::chrono::steady_clock::now() + duration;
    for (;;) {
        const Nanoseconds left = end - std::chrono::steady_clock::now();
        if (left <= Nanoseconds::zero())
            break;
        const timespec time{static_cast<time_t>(left.count() / 1000000000),
                            static_cast<long>(left.count() % 1000000000)};
        pollfd device{fuse_session_fd(session_), POLLIN, 0};
        if (::ppoll(&device, 1, &time, nullptr) <= 0)
            continue;
        if ((device.revents & POLLIN) == 0) {  // nothing is mounted any more
            std::this_thread::sleep_until(end);
            break;
        }
        readRequest();
    }
    answerDyingCallers();
}

void FileServer::serve()
{
    fuse_buf next{};
    while (!fuse_session_exited(session_)) {
        if (!waiting_.empty()) {
            const fuse_buf first = waiting_.front();
            waiting_.pop_front();
            fuse_session_process_buf(session_, &first);
            std::free(first.mem);
            continue;
        }
        const int size = fuse_session_receive_buf(session_, &next);
        if (size > 0)
            fuse_session_process_buf(session_, &next);
        else if (size != -EINTR)
            break;
    }
    std::free(next.mem);
}

// Without blocking: whoever asked may have been killed since, and its request is gone.
void FileServer::readRequest()
{
    const int device = fuse_session_fd(session_);
    const int flags = ::fcntl(device, F_GETFL);
    ::fcntl(device, F_SETFL, flags | O_NONBLOCK);
    fuse_buf request{};
    const bool received = fuse_session_receive_buf(session_, &request) > 0;
    ::fcntl(device, F_SETFL, flags);
    if (received && headerOf(request).opcode == FUSE_IOCTL) {
        waiting_.push_back(request);
        return;
    }
    if (received)
        fuse_session_process_buf(session_, &request);
    std::free(request.mem);
}

void FileServer::answerDyingCallers()
{
    std::erase_if(waiting_, [this](const fuse_buf &request) {
        const fuse_in_header &caller = headerOf(request);
        if (caller.pid == 0 || !isDying(static_cast<pid_t>(caller.pid)))
            return false;
        const fuse_out_header answer{sizeof answer, -EINTR, caller.unique};
        (void)!::write(fuse_session_fd(session_), &answer, sizeof answer);
        std::free(request.mem);
        return true;
    });
}

struct stat attributesOf(fuse_ino_t inode, mode_t mode)
{
    struct stat attributes {
    };
    attributes.st_ino = inode;
    attributes.st_mode = mode;
    attributes.st_nlink = S_ISDIR(mode) ? 2 : 1;
    attributes.st_uid = ::geteuid();
    attributes.st_gid = ::getegid();
    return attributes;
}

}  // namespace sim
