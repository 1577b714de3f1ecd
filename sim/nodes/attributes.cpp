#include "sim/nodes/attributes.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

namespace sim
{

namespace
{

constexpr std::size_t attributeSize = 4096;  // as sysfs has it, whatever an attribute holds

// A board's inodes: four in a row, behind those of the boards before it. A board that is plugged in again has new ones:
// what was open, or somebody's working directory, stays gone with the board that was pulled off.
enum class Kind { Board, Device, Product, Speed };

struct Place {
    int deviceNo;
    std::uint64_t generation;
    Kind kind;
};

fuse_ino_t inodeOf(const Place &place)
{
    const fuse_ino_t board = place.generation * deviceCount + static_cast<fuse_ino_t>(place.deviceNo);
    return 16 + 4 * board + static_cast<fuse_ino_t>(place.kind);
}

std::optional<Place> placeOf(fuse_ino_t inode)
{
    if (inode < 16)
        return std::nullopt;
    const fuse_ino_t board = (inode - 16) / 4;
    return Place{static_cast<int>(board % deviceCount), board / deviceCount, static_cast<Kind>((inode - 16) % 4)};
}

struct Entry {
    std::string name;
    fuse_ino_t inode;
};

VirtualBoards &boardsOf(fuse_req_t request)
{
    return *static_cast<VirtualBoards *>(fuse_req_userdata(request));
}

/// Of the board that is plugged there now.
std::optional<std::uint64_t> generationOf(VirtualBoards &boards, int deviceNo)
{
    const std::shared_ptr<VirtualBoard> board = boards.hold(deviceNo);
    if (!board)
        return std::nullopt;
    const auto lock = board->lock();
    return board->plugged() ? std::optional(board->generation()) : std::nullopt;
}

bool isThere(VirtualBoards &boards, const Place &place)
{
    return generationOf(boards, place.deviceNo) == place.generation;
}

std::vector<Entry> entriesOf(VirtualBoards &boards, fuse_ino_t inode)
{
    std::vector<Entry> entries;
    const std::optional<Place> place = placeOf(inode);
    if (!place) {
        for (int deviceNo = 0; deviceNo < deviceCount; ++deviceNo) {
            if (const auto generation = generationOf(boards, deviceNo))
                entries.push_back({"Vexa_" + std::to_string(deviceNo), inodeOf({deviceNo, *generation, Kind::Board})});
        }
    } else if (isThere(boards, *place)) {
        const auto within = [&place](Kind kind) { return inodeOf({place->deviceNo, place->generation, kind}); };
        if (place->kind == Kind::Board)
            entries.push_back({"device", within(Kind::Device)});
        if (place->kind == Kind::Device) {
            entries.push_back({"product", within(Kind::Product)});
            entries.push_back({"speed", within(Kind::Speed)});
        }
    }
    return entries;
}

struct stat statOf(fuse_ino_t inode)
{
    const std::optional<Place> place = placeOf(inode);
    const bool isFile = place && (place->kind == Kind::Product || place->kind == Kind::Speed);
    struct stat attributes = attributesOf(inode, isFile ? S_IFREG | 0444 : S_IFDIR | 0755);
    attributes.st_size = isFile ? attributeSize : 0;
    return attributes;
}

void lookup(fuse_req_t request, fuse_ino_t parent, const char *name)
{
    const std::vector<Entry> entries = entriesOf(boardsOf(request), parent);
    const auto found = std::find_if(entries.begin(), entries.end(), [name](const Entry &e) { return e.name == name; });
    if (found == entries.end()) {
        fuse_reply_err(request, ENOENT);
        return;
    }
    fuse_entry_param entry{};
    entry.ino = found->inode;
    entry.attr = statOf(found->inode);
    entry.attr_timeout = forever;
    entry.entry_timeout = 0;
    fuse_reply_entry(request, &entry);
}

void getAttributes(fuse_req_t request, fuse_ino_t inode, fuse_file_info *)
{
    const struct stat attributes = statOf(inode);
    fuse_reply_attr(request, &attributes, forever);
}

void readDirectory(fuse_req_t request, fuse_ino_t inode, size_t size, off_t offset, fuse_file_info *)
{
    std::vector<Entry> entries = entriesOf(boardsOf(request), inode);
    entries.insert(entries.begin(), {{".", inode}, {"..", FUSE_ROOT_ID}});
    std::vector<char> listing(size);
    std::size_t used = 0;
    for (auto index = static_cast<std::size_t>(offset); index < entries.size(); ++index) {
        const struct stat attributes = statOf(entries[index].inode);
        const std::size_t needed =
            fuse_add_direntry(request, listing.data() + used, size - used, entries[index].name.c_str(), &attributes,
                              static_cast<off_t>(index) + 1);
        if (needed > size - used)
            break;
        used += needed;
    }
    fuse_reply_buf(request, listing.data(), used);
}

void open(fuse_req_t request, fuse_ino_t, fuse_file_info *file)
{
    if ((file->flags & O_ACCMODE) != O_RDONLY) {
        fuse_reply_err(request, EACCES);
        return;
    }
    file->direct_io = 1;
    file->noflush = 1;
    fuse_reply_open(request, file);
}

void read(fuse_req_t request, fuse_ino_t inode, size_t size, off_t offset, fuse_file_info *)
{
    const std::optional<Place> place = placeOf(inode);
    VirtualBoards &boards = boardsOf(request);
    std::optional<std::string> text;
    if (place && isThere(boards, *place))
        text = place->kind == Kind::Product ? boards.productText(place->deviceNo) : boards.speedText(place->deviceNo);
    if (!text) {
        fuse_reply_err(request, ENODEV);
        return;
    }
    const std::size_t start = std::min(static_cast<std::size_t>(offset), text->size());
    fuse_reply_buf(request, text->data() + start, std::min(size, text->size() - start));
}

fuse_lowlevel_ops operations()
{
    fuse_lowlevel_ops operations{};
    operations.lookup = lookup;
    operations.getattr = getAttributes;
    operations.readdir = readDirectory;
    operations.open = open;
    operations.read = read;
    return operations;
}

}  // namespace

Attributes::Attributes(VirtualBoards &boards, OwnedFd device) : server_(operations(), &boards, std::move(device)) {}

}  // namespace sim
