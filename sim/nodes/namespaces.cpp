#include "sim/nodes/namespaces.h"

#include "sim/nodes/bind_mounts.h"
#include "sim/nodes/run_link.h"
#include "sim/system/child_process.h"
#include "sim/system/failure.h"

#include <array>
#include <climits>
#include <fcntl.h>
#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>

namespace sim
{

namespace
{

bool mayMount()
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    std::array<__user_cap_data_struct, 2> capabilities{};
    if (::syscall(SYS_capget, &header, capabilities.data()) != 0)
        return false;
    return (capabilities[CAP_SYS_ADMIN / 32].effective & 1U << CAP_SYS_ADMIN % 32) != 0;
}

void writeFile(const std::string &path, const std::string &text)
{
    const OwnedFd file(permitted(::open(path.c_str(), O_WRONLY | O_CLOEXEC), "opening " + path));
    permitted(static_cast<int>(::write(file.get(), text.data(), text.size())), "writing " + path);
}

std::string nodeOf(int deviceNo)
{
    return "/dev/Vexa_" + std::to_string(deviceNo);
}

constexpr char loadFuse[] = "load the module (modprobe fuse); a container needs --device /dev/fuse";

OwnedFd openFuse()
{
    const std::string action = "opening /dev/fuse";
    const OwnedFd found(::open("/dev/fuse", O_PATH | O_CLOEXEC));
    struct stat file {
    };
    if (!found || ::fstat(found.get(), &file) != 0)
        fail(action, loadFuse);
    if (!S_ISCHR(file.st_mode) || file.st_rdev != ::makedev(10, 229))
        throw std::runtime_error("/dev/fuse is not FUSE's device, something else hides it; take that away (a "
                                 "container needs --device /dev/fuse) and make it: mknod -m 666 /dev/fuse c 10 229");
    OwnedFd fuse(::open("/dev/fuse", O_RDWR | O_CLOEXEC));
    if (!fuse && errno == EACCES && ::geteuid() != 0)
        fail(action, "let this user read and write it (chmod 666 /dev/fuse), or run it as root");
    if (!fuse && (errno == EACCES || errno == EPERM))
        fail(action, "a container needs --device /dev/fuse, and /dev must not be mounted with nodev");
    if (!fuse)
        fail(action, loadFuse);
    return fuse;
}

void mountFuse(const OwnedFd &fuse, const std::string &place, mode_t type)
{
    std::array<char, 128> options{};
    std::snprintf(options.data(), options.size(),
                  "fd=%d,rootmode=%o,user_id=%u,group_id=%u,allow_other,default_permissions", fuse.get(), type,
                  ::geteuid(), ::getegid());
    const int result = ::mount("sorvane-sim", place.c_str(), "fuse", MS_NOSUID | MS_NODEV, options.data());
    if (result != 0 && errno == ENODEV)
        fail("mounting " + place, loadFuse);
    permitted(result, "mounting " + place);
}

void takeOwnMountNamespace()
{
    permitted(::unshare(CLONE_NEWNS), "making a mount namespace");
    // What the machine mounts from now on still appears inside; nothing goes the other way.
    permitted(::mount(nullptr, "/", nullptr, MS_SLAVE | MS_REC, nullptr), "keeping mounts private");
}

OwnedFd openToRead(const std::string &path)
{
    return OwnedFd(checked(::open(path.c_str(), O_RDONLY | O_CLOEXEC), "opening " + path));
}

bool isSameFile(const OwnedFd &one, const OwnedFd &other)
{
    struct stat first {
    }, second{};
    return ::fstat(one.get(), &first) == 0 && ::fstat(other.get(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

void tryEverything()
{
    obtainTheRightToMount();
    const OwnedFd fuse = openFuse();
    takeOwnMountNamespace();
    for (const char *directory : {"/dev", "/sys/class"})
        permitted(::mount("tmpfs", directory, "tmpfs", 0, nullptr), std::string("mounting on ") + directory);
    checked(::mkdir("/dev/probe", 0755), "making a directory");
    mountFuse(fuse, "/dev/probe", S_IFDIR);
    permitted(::unshare(CLONE_NEWIPC | CLONE_NEWPID), "making IPC and process namespaces");
}

}  // namespace

void obtainTheRightToMount()
{
    if (mayMount())
        return;
    const std::string uid = std::to_string(::geteuid());
    const std::string gid = std::to_string(::getegid());
    permitted(::unshare(CLONE_NEWUSER), "making a user namespace");
    writeFile("/proc/self/setgroups", "deny");
    writeFile("/proc/self/uid_map", uid + " " + uid + " 1");
    writeFile("/proc/self/gid_map", gid + " " + gid + " 1");
}

MountedDevices mountDevices(const std::vector<int> &deviceNos, const std::string &runName)
{
    MountedDevices devices;
    devices.attributes = openFuse();
    for (const int deviceNo : deviceNos)
        devices.nodes[deviceNo] = openFuse();
    takeOwnMountNamespace();

    replaceByBindMounts("/dev",
                        [](const std::string &name) { return name.rfind("Vexa_", 0) == 0 || name == "sorvane-sim"; });
    replaceByBindMounts("/sys/class", [](const std::string &name) { return name == "Vexa"; });
    checked(::symlink(runName.c_str(), runLink), "making a link in /dev");
    checked(::mkdir("/sys/class/Vexa", 0755), "making /sys/class/Vexa");
    mountFuse(devices.attributes, "/sys/class/Vexa", S_IFDIR);
    for (const auto &[deviceNo, fuse] : devices.nodes) {
        const std::string node = nodeOf(deviceNo);
        const OwnedFd made(checked(::open(node.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666), "making " + node));
        mountFuse(fuse, node, S_IFREG);
    }
    return devices;
}

void learnOwnersOfNodes(const std::vector<int> &deviceNos)
{
    for (const int deviceNo : deviceNos) {
        struct stat attributes {
        };
        checked(::stat(nodeOf(deviceNo).c_str(), &attributes), "looking at " + nodeOf(deviceNo));
    }
}

void joinNamespacesOf(pid_t process)
{
    // Joining a mount namespace leaves the working directory behind, and the root, which may be that of a chroot.
    std::array<char, PATH_MAX> directory{};
    if (!::getcwd(directory.data(), directory.size()))
        fail("naming the working directory");
    const OwnedFd root = openToRead("/proc/" + std::to_string(process) + "/root");
    struct stat user {
    };
    checked(::stat(("/proc/" + std::to_string(process)).c_str(), &user), "finding the user of the boards");
    const bool otherUser = user.st_uid != ::geteuid();
    std::vector<std::pair<OwnedFd, int>> spaces;
    for (const auto &[name, flag] : {std::pair{"user", CLONE_NEWUSER}, {"ipc", CLONE_NEWIPC}, {"mnt", CLONE_NEWNS}}) {
        OwnedFd space = openToRead("/proc/" + std::to_string(process) + "/ns/" + name);
        if (!isSameFile(space, openToRead(std::string("/proc/self/ns/") + name)))
            spaces.emplace_back(std::move(space), flag);
    }
    for (const auto &[space, flag] : spaces)
        checked(::setns(space.get(), flag), "joining the namespaces of the boards");
    checked(::fchdir(root.get()), "going to the root of the boards");
    checked(::chroot("."), "taking the root of the boards");
    checked(::chdir(directory.data()), "going back to the working directory");
    takeOwnMountNamespace();
    if (!otherUser)
        return;
    checked(::setresgid(user.st_gid, user.st_gid, user.st_gid), "taking the group of the boards' user");
    checked(::setresuid(user.st_uid, user.st_uid, user.st_uid), "taking the id of the boards' user");
}

std::optional<std::string> whatNodesLack()
{
    ChildProcess child([](Channel parent) {
        try {
            tryEverything();
        } catch (const std::exception &error) {
            parent.send(error.what());
        }
    });
    const std::optional<Channel::Message> reason = child.channel().receive();
    if (!reason)
        return std::nullopt;
    return reason->text;
}

}  // namespace sim
