#include "sim/language/files.h"

#include "sim/language/words.h"
#include "sim/system/descriptors.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sim
{

namespace
{

std::string reasonFor(const std::string &file)
{
    return "\"" + file + "\": " + std::strerror(errno);
}

// What a program sets by umask cannot be asked for without setting it.
constexpr mode_t modeOfFiles = 0644;

bool fill(const OwnedFd &file, const Bytes &bytes)
{
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t now = ::write(file.get(), bytes.data() + done, bytes.size() - done);
        if (now < 0)
            return false;
        done += static_cast<std::size_t>(now);
    }
    return ::fchmod(file.get(), modeOfFiles) == 0 && ::fsync(file.get()) == 0;
}

}  // namespace

Bytes bytesOfFile(const std::string &file)
{
    const OwnedFd from(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat attributes {
    };
    if (!from || ::fstat(from.get(), &attributes) != 0)
        throw UsageError(reasonFor(file));
    if (!S_ISREG(attributes.st_mode) || attributes.st_size > static_cast<off_t>(largestFile))
        throw UsageError("\"" + file + "\" holds no memory; allowed is a regular file of the memory's size");
    Bytes bytes(static_cast<std::size_t>(attributes.st_size));
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t now = ::read(from.get(), bytes.data() + done, bytes.size() - done);
        if (now < 0)
            throw UsageError(reasonFor(file));
        if (now == 0)
            bytes.resize(done);  // somebody has cut it
        done += static_cast<std::size_t>(now);
    }
    return bytes;
}

void writeFile(const std::string &file, const Bytes &bytes)
{
    std::string temporary = file + ".XXXXXX";
    const OwnedFd to(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!to)
        throw std::runtime_error(reasonFor(file));
    if (!fill(to, bytes) || ::rename(temporary.c_str(), file.c_str()) != 0) {
        const std::string reason = reasonFor(file);
        ::unlink(temporary.c_str());
        throw std::runtime_error(reason);
    }
}

}  // namespace sim
