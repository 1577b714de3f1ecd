#include "sim/inprocess/board_descriptors.h"

#include "sim/driver/driver.h"
#include "sim/inprocess/inprocess.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace sim
{

namespace
{

// A file is known by its device and inode numbers, which no other file has while this one is open.
using FileId = std::pair<dev_t, ino64_t>;

struct OpenBoard {
    int deviceNo;
    std::shared_ptr<VirtualBoard> board;
    std::uint64_t generation;
};

struct Descriptors {
    std::mutex mutex;
    std::map<FileId, OpenBoard> boards;
    InProcessCalls calls;
};

constexpr std::size_t tidyAbove = 64;

// Never destroyed: programs close boards in their last destructors.
Descriptors &descriptors()
{
    static auto &all = *new Descriptors;
    return all;
}

std::optional<FileId> fileOf(int descriptor)
{
    struct stat64 status {
    };
    if (fstat64(descriptor, &status) != 0)
        return std::nullopt;
    return FileId(status.st_dev, status.st_ino);
}

// Every open descriptor with its file; those of the boards are among them. They are looked at by name: most belong to
// other threads, which may close them meanwhile, and a call on such a number is what a race checker reports.
std::vector<std::pair<int, FileId>> openFiles()
{
    std::vector<std::pair<int, FileId>> files;
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd", error)) {
        struct stat64 status {
        };
        if (stat64(entry.path().c_str(), &status) == 0)
            files.emplace_back(std::atoi(entry.path().filename().c_str()), FileId(status.st_dev, status.st_ino));
    }
    return files;
}

// Nobody tells us of a close, so files that are no longer open are forgotten now and then.
void tidy(std::map<FileId, OpenBoard> &boards)
{
    if (boards.size() <= tidyAbove)
        return;
    std::set<FileId> open;
    for (const auto &[descriptor, file] : openFiles())
        open.insert(file);
    std::erase_if(boards, [&open](const auto &entry) { return open.count(entry.first) == 0; });
}

// A nameless file with this content, opened with the flags that a device or an attribute would take notice of. The
// system calls are made directly: the library's own spellings are the ones that lead here.
int namelessFile(const std::string &name, const std::string &content, int flags)
{
    const int made = memfd_create(name.c_str(), MFD_CLOEXEC);
    if (made < 0)
        return -errno;
    const std::string path = "/proc/self/fd/" + std::to_string(made);
    const bool written = write(made, content.data(), content.size()) == static_cast<ssize_t>(content.size());
    const int harmless = flags & ~(O_CREAT | O_EXCL | O_TRUNC | O_NOFOLLOW);
    const int opened = written ? static_cast<int>(syscall(SYS_openat, AT_FDCWD, path.c_str(), harmless)) : -1;
    const int error = errno;
    if (opened < 0) {
        close(made);
        return -error;
    }
    // The lowest free number was taken first; it is the one that a caller gets from any open.
    dup3(opened, made, flags & O_CLOEXEC);
    close(opened);
    return made;
}

int openNode(int deviceNo, int flags)
{
    const std::shared_ptr<VirtualBoard> board = inProcessBoards().hold(deviceNo);
    if (!board)
        return -ENOENT;
    const auto lock = board->lock();
    if (!board->plugged())
        return -ENOENT;
    const int descriptor = namelessFile("Vexa_" + std::to_string(deviceNo), "", flags);
    if (descriptor < 0)
        return descriptor;
    const std::lock_guard guard(descriptors().mutex);
    tidy(descriptors().boards);
    descriptors().boards[*fileOf(descriptor)] = {deviceNo, board, board->generation()};
    ++descriptors().calls.opens;
    descriptors().calls.lastOpenFlags = flags;
    return descriptor;
}

int openAttribute(const BoardPath &path, int flags)
{
    const bool product = path.file == BoardPath::File::Product;
    const std::optional<std::string> text =
        product ? inProcessBoards().productText(path.deviceNo) : inProcessBoards().speedText(path.deviceNo);
    if (!text)
        return -ENOENT;
    if ((flags & O_ACCMODE) != O_RDONLY)
        return -EACCES;
    return namelessFile(product ? "product" : "speed", *text, flags);
}

}  // namespace

int openBoardFile(const BoardPath &path, int flags)
{
    // The file exists already.
    constexpr int createNew = O_CREAT | O_EXCL;
    if ((flags & createNew) == createNew && inProcessBoards().productText(path.deviceNo))
        return -EEXIST;
    return path.file == BoardPath::File::Node ? openNode(path.deviceNo, flags) : openAttribute(path, flags);
}

std::optional<int> boardIoctl(int descriptor, unsigned long request, void *argument)
{
    const int savedError = errno;
    const std::optional<FileId> file = fileOf(descriptor);
    errno = savedError;
    OpenBoard open;
    {
        const std::lock_guard guard(descriptors().mutex);
        const auto found = file ? descriptors().boards.find(*file) : descriptors().boards.end();
        if (found == descriptors().boards.end())
            return std::nullopt;
        open = found->second;
        ++descriptors().calls.ioctls;
    }
    ProcessMemory memory(getpid());
    return driverIoctl(*open.board, request, reinterpret_cast<std::uintptr_t>(argument), ownWidth, memory,
                       {open.generation, {}});
}

std::vector<int> openDescriptors(int deviceNo)
{
    std::vector<int> found;
    const auto files = openFiles();
    const std::lock_guard guard(descriptors().mutex);
    for (const auto &[descriptor, file] : files) {
        const auto board = descriptors().boards.find(file);
        if (board != descriptors().boards.end() && board->second.deviceNo == deviceNo)
            found.push_back(descriptor);
    }
    std::sort(found.begin(), found.end());
    return found;
}

InProcessCalls inProcessCalls()
{
    const std::lock_guard guard(descriptors().mutex);
    return descriptors().calls;
}

void resetInProcessCalls()
{
    const std::lock_guard guard(descriptors().mutex);
    descriptors().calls = {};
}

}  // namespace sim
