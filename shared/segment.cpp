#include "shared/segment.h"

#include "shared/key_file.h"

#include <cerrno>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace
{

/// Each try that fails means that another process made or removed the segment in between.
constexpr int mostTries = 1000;

void *const notAttached = reinterpret_cast<void *>(-1);  // what shmat returns when it fails

bool markedForRemoval(const shmid_ds &status)
{
    return (status.shm_perm.mode & SHM_DEST) != 0;
}

}  // namespace

LinuxSharedMemory::LinuxSharedMemory(const SharedMemoryArenaID &id) : SharedMemory(id)
{
    LinuxSharedMemory::Create();
}

LinuxSharedMemory::~LinuxSharedMemory()
{
    LinuxSharedMemory::Delete();
}

bool LinuxSharedMemory::Create()
{
    const key_t key = keyOf("/tmp/", arenaID.objectID.name, arenaID.objectID.id + 1);
    if (key == -1)
        return false;
    for (int tries = 0; tries < mostTries; ++tries) {
        meFirst = 0;
        segmentID = ::shmget(key, size, 0666);
        if (segmentID == -1 && errno == ENOENT) {
            segmentID = ::shmget(key, size, IPC_CREAT | IPC_EXCL | 0666);
            if (segmentID == -1 && errno == EEXIST)
                continue;
            meFirst = segmentID == -1 ? 0 : 1;
        }
        if (segmentID == -1)
            return false;
        switch (Attach()) {
        case Outcome::Attached:
            return true;
        case Outcome::Failed:
            return false;
        case Outcome::RemovedMeanwhile:
            break;
        }
    }
    return false;
}

LinuxSharedMemory::Outcome LinuxSharedMemory::Attach()
{
    void *attached = ::shmat(segmentID, nullptr, 0);
    if (attached == notAttached) {
        const bool removed = errno == EIDRM || errno == EINVAL;
        if (!meFirst)
            segmentID = -1;  // never looked at, so not ours to remove
        return removed ? Outcome::RemovedMeanwhile : Outcome::Failed;
    }
    shmid_ds status;
    if (::shmctl(segmentID, IPC_STAT, &status) == 0 && markedForRemoval(status)) {
        ::shmdt(attached);
        segmentID = -1;
        return Outcome::RemovedMeanwhile;
    }
    address = attached;
    return Outcome::Attached;
}

bool LinuxSharedMemory::Delete()
{
    if (address)
        ::shmdt(address);
    address = nullptr;
    shmid_ds status;
    if (segmentID != -1 && ::shmctl(segmentID, IPC_STAT, &status) == 0 && status.shm_nattch == 0)
        ::shmctl(segmentID, IPC_RMID, nullptr);
    segmentID = -1;
    return true;
}

void LinuxSharedMemory::Abandon()
{
    if (address)
        ::shmdt(address);
    address = nullptr;
    segmentID = -1;
}

bool LinuxSharedMemory::Alone() const
{
    shmid_ds status;
    return ::shmctl(segmentID, IPC_STAT, &status) == 0 && status.shm_nattch == 1;
}

bool LinuxSharedMemory::Lock()
{
    return mutex && mutex->Lock();
}

bool LinuxSharedMemory::UnLock()
{
    return mutex && mutex->UnLock();
}

bool LinuxSharedMemory::MeFirst()
{
    return meFirst != 0;
}
