// A file system over an already mounted /dev/fuse descriptor, served by one thread of its own.
//
// One thread for each board's node: the kernel hands the calls over in the order in which they came, and a slow board
// holds up nobody else's.
//
// Nothing here knows where it is mounted. The process that serves a file system must never touch it: killed there, it
// would wait for its own answer beyond SIGKILL.
#ifndef SORVANE_SIM_NODES_FILE_SERVER_H
#define SORVANE_SIM_NODES_FILE_SERVER_H

#define FUSE_USE_VERSION 35

#include "sim/core/clock.h"
#include "sim/system/descriptors.h"

#include <deque>
#include <fuse_lowlevel.h>
#include <memory>
#include <sys/stat.h>
#include <thread>

namespace sim
{

class FileServer
{
public:
    /// `context` is what the operations get from fuse_req_userdata; it outlives the server.
    FileServer(const fuse_lowlevel_ops &operations, void *context, OwnedFd device);
    FileServer(const FileServer &) = delete;
    FileServer &operator=(const FileServer &) = delete;
    /// Leaves the thread alone: only the end of the process, or of the last mount, ends its waiting.
    ~FileServer();

    /// For an ioctl that takes its time. Those that come meanwhile wait for their turn, and all else is answered. A
    /// caller that is dying need not wait: of itself it leaves the kernel's queue for SIGKILL alone.
    void passTime(Nanoseconds duration);

private:
    void serve();
    void readRequest();
    void answerDyingCallers();

    fuse_session *session_;
    std::deque<fuse_buf> waiting_;  // ioctls
    std::thread thread_;
};

/// What never changes is not asked for again.
constexpr double forever = 1e9;

/// Belongs to the user that runs the boards: a file whose owner has no name in a user namespace could not be written.
struct stat attributesOf(fuse_ino_t inode, mode_t mode);

}  // namespace sim

#endif
