#include "sim/nodes/bind_mounts.h"

#include "sim/system/descriptors.h"
#include "sim/system/failure.h"

#include <array>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/mount.h>
#include <sys/stat.h>
#include <vector>

namespace sim
{

namespace
{

std::vector<std::string> namesIn(int directory)
{
    OwnedFd listed(checked(::openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC), "opening a directory"));
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(::fdopendir(listed.get()), ::closedir);
    if (!stream)
        fail("reading a directory");
    listed.release();
    std::vector<std::string> names;
    while (const dirent *entry = ::readdir(stream.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    return names;
}

void copyLink(int original, const std::string &name, const std::string &place)
{
    std::array<char, PATH_MAX> target{};
    if (::readlinkat(original, name.c_str(), target.data(), target.size() - 1) > 0)
        checked(::symlink(target.data(), place.c_str()), "linking " + place);
}

void bind(int original, const std::string &name, const std::string &place)
{
    const std::string source = "/proc/self/fd/" + std::to_string(original) + "/" + name;
    if (::mount(source.c_str(), place.c_str(), nullptr, MS_BIND | MS_REC, nullptr) != 0 && errno != ENOENT)
        fail("binding " + place);
}

void bindEntry(int original, const std::string &name, const std::string &place)
{
    struct stat entry {
    };
    if (::fstatat(original, name.c_str(), &entry, AT_SYMLINK_NOFOLLOW) != 0)
        return;  // gone meanwhile
    if (S_ISLNK(entry.st_mode)) {
        copyLink(original, name, place);
        return;
    }
    if (S_ISDIR(entry.st_mode))
        checked(::mkdir(place.c_str(), 0755), "making " + place);
    else
        OwnedFd(checked(::open(place.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644), "making " + place));
    bind(original, name, place);
}

}  // namespace

void replaceByBindMounts(const std::string &directory, const std::function<bool(const std::string &name)> &leftOut)
{
    const OwnedFd original(
        checked(::open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC), "opening " + directory));
    const std::vector<std::string> names = namesIn(original.get());
    permitted(::mount("tmpfs", directory.c_str(), "tmpfs", MS_NOSUID, "mode=755"), "mounting on " + directory);
    for (const std::string &name : names) {
        if (!leftOut(name))
            bindEntry(original.get(), name, std::string(directory).append("/").append(name));
    }
}

}  // namespace sim
