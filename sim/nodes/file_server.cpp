#include "sim/nodes/file_server.h"

#include "sim/nodes/failure.h"

namespace sim
{

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
    thread_ = std::thread([session = session_] { fuse_session_loop(session); });
}

FileServer::~FileServer()
{
    if (thread_.joinable())
        thread_.detach();
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
