#include "tools/board.h"
#include "tools/findings.h"
#include "tools/holders.h"
#include "tools/node.h"
#include "tools/stand_in.h"

#include <cerrno>
#include <cstring>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tools
{

namespace
{

std::string groupName(gid_t id)
{
    const group *entry = ::getgrgid(id);
    return entry ? entry->gr_name : std::to_string(id);
}

/// The rule that gives the nodes to a group of people.
std::string ruleFor(gid_t nodesGroup)
{
    const std::string group = nodesGroup == 0 ? "dialout" : groupName(nodesGroup);
    return "write into /etc/udev/rules.d/60-sorvane.rules: KERNEL==\"Vexa_[0-9]*\", GROUP=\"" + group +
           "\", MODE=\"0660\"; then: udevadm control --reload && udevadm trigger && usermod -aG " + group + " " +
           userName(::geteuid()) + ", and log in again";
}

std::string rightsOf(const struct stat &status)
{
    char mode[8];
    std::snprintf(mode, sizeof mode, "%04o", static_cast<unsigned int>(status.st_mode & 07777));
    return "mode " + std::string(mode) + ", owner " + userName(status.st_uid) + ", group " + groupName(status.st_gid);
}

Finding lookAtNode(int device, bool isInSys)
{
    const std::string path = pathOf(device);
    struct stat status;
    if (::stat(path.c_str(), &status) != 0)
        return {Weight::Problem, "node",
                "/sys/class/Vexa/Vexa_" + std::to_string(device) + " shows a board, but " + path + ": " +
                    std::strerror(errno),
                "make the system create it: udevadm trigger --subsystem-match=Vexa, or plug the board in again"};
    if (!isInSys)
        return {Weight::Problem, "node",
                path + " is there, but /sys/class/Vexa/Vexa_" + std::to_string(device) +
                    "/device tells no known model and speed, so that no program opens it",
                "plug the board in again; a node that was made by hand (mknod) is to be removed"};
    if (::access(path.c_str(), R_OK | W_OK) != 0)
        return {Weight::Problem, "node",
                path + " is closed to user " + userName(::geteuid()) + " (" + rightsOf(status) + ")",
                ruleFor(status.st_gid)};
    return {Weight::Fine, "node", path + " may be read and written (" + rightsOf(status) + ")", ""};
}

}  // namespace

Findings lookAtNodes()
{
    Findings findings;
    std::vector<std::string> paths;
    for (int device = 0; device < devices; ++device) {
        const bool isInSys = modelOf(device).has_value();
        struct stat status;
        if (!isInSys && ::lstat(pathOf(device).c_str(), &status) != 0)
            continue;
        findings.push_back(lookAtNode(device, isInSys));
        paths.push_back(pathOf(device));
    }
    if (findings.empty())
        return {{Weight::Problem, "node",
                 "there is no board: neither a node /dev/Vexa_<n> nor an entry below "
                 "/sys/class/Vexa",
                 "plug one in; where it is plugged in, look whether the kernel driver is loaded (dmesg, lsmod)"}};
    const std::vector<Holders> holders = holdersOf(paths);
    for (std::size_t n = 0; n < paths.size(); ++n) {
        if (!holders[n].processes.empty())
            findings.push_back({Weight::Remark, "node", paths[n] + " is open in " + holders[n].text(), ""});
    }
    if (!holders.front().complete)
        findings.push_back({Weight::Remark, "node",
                            "not every process could be looked at: another user's may have a "
                            "node open",
                            "run it as root to be sure"});
    return findings;
}

Findings lookAtImages()
{
    Findings findings;
    for (const protocol::Model model : {protocol::Model::R20, protocol::Model::R20s, protocol::Model::R35}) {
        const std::string image = std::string("the firmware image for an ") + nameOf(model);
        if (isStandIn(model))
            findings.push_back({Weight::Remark, "images",
                                image + " is a stand-in: it only idles, and drives virtual "
                                        "boards alone",
                                howToSupplyImages});
        else
            findings.push_back({Weight::Fine, "images", image + " is the vendor's", ""});
    }
    return findings;
}

}  // namespace tools
