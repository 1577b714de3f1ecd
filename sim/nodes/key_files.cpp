#include "sim/nodes/key_files.h"

#include <cerrno>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <unistd.h>

namespace sim
{

namespace
{

constexpr const char *keyFiles[] = {"/tmp/R20SharedMemory", "/tmp/Sem_R20Mutex"};

bool isThere(key_t key)
{
    // Any other failure, a lack of rights say, means that there is something.
    return ::shmget(key, 0, 0) >= 0 || errno != ENOENT || ::semget(key, 0, 0) >= 0 || errno != ENOENT;
}

// The project number, the top byte of a key, is the library's affair: every one counts.
bool isInUse(const std::string &file)
{
    for (int project = 1; project <= 255; ++project) {
        const key_t key = ::ftok(file.c_str(), project);
        if (key != -1 && isThere(key))
            return true;
    }
    return false;
}

}  // namespace

KeyFiles::KeyFiles()
{
    for (const char *file : keyFiles) {
        if (::access(file, F_OK) != 0)
            missing_.emplace_back(file);
    }
}

void KeyFiles::removeNewOnes(bool otherRunsAreUp) const
{
    if (otherRunsAreUp)
        return;
    for (const std::string &file : missing_) {
        if (!isInUse(file))
            ::unlink(file.c_str());
    }
}

}  // namespace sim
