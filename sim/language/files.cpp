#include "sim/language/files.h"

#include "sim/language/words.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace sim
{

namespace
{

class File
{
public:
    File(const std::string &name, int descriptor) : name_(name), descriptor_(descriptor)
    {
        if (descriptor_ < 0)
            refuse();
    }
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    ~File() { ::close(descriptor_); }

    [[noreturn]] void refuse() const { throw UsageError("\"" + name_ + "\": " + std::strerror(errno)); }
    int descriptor() const { return descriptor_; }

private:
    std::string name_;
    int descriptor_;
};

// What a program sets by umask cannot be asked for without setting it.
constexpr mode_t modeOfFiles = 0644;

void fill(const File &file, const Bytes &bytes)
{
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t now = ::write(file.descriptor(), bytes.data() + done, bytes.size() - done);
        if (now < 0)
            file.refuse();
        done += static_cast<std::size_t>(now);
    }
    if (::fchmod(file.descriptor(), modeOfFiles) != 0 || ::fsync(file.descriptor()) != 0)
        file.refuse();
}

}  // namespace

Bytes bytesOfFile(const std::string &file)
{
    const File from(file, ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat attributes {
    };
    if (::fstat(from.descriptor(), &attributes) != 0)
        from.refuse();
    if (!S_ISREG(attributes.st_mode) || attributes.st_size > static_cast<off_t>(largestFile))
        throw UsageError("\"" + file + "\" holds no memory; allowed is a regular file of the memory's size");
    Bytes bytes(static_cast<std::size_t>(attributes.st_size));
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t now = ::read(from.descriptor(), bytes.data() + done, bytes.size() - done);
        if (now < 0)
            from.refuse();
        if (now == 0)
            bytes.resize(done);  // somebody has cut it
        done += static_cast<std::size_t>(now);
    }
    return bytes;
}

void writeFile(const std::string &file, const Bytes &bytes)
{
    std::string temporary = file + ".XXXXXX";
    const File to(file, ::mkostemp(temporary.data(), O_CLOEXEC));
    try {
        fill(to, bytes);
        if (::rename(temporary.c_str(), file.c_str()) != 0)
            to.refuse();
    } catch (...) {
        ::unlink(temporary.c_str());
        throw;
    }
}

}  // namespace sim
