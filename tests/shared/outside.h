// What processes share, seen and damaged from outside.
#ifndef SORVANE_TESTS_SHARED_OUTSIDE_H
#define SORVANE_TESTS_SHARED_OUTSIDE_H

#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <unistd.h>

#include "inspect/arena_report.h"
#include "tests/support/peer.h"

namespace tests
{

constexpr const char *arenaKeyFile = "/tmp/R20SharedMemory";
constexpr const char *setKeyFile = "/tmp/Sem_R20Mutex";

inline int segment()
{
    return reportArena().segmentID;
}

inline int semaphores()
{
    return reportArena().setID;
}

inline int valueOf(int semaphore)
{
    return ::semctl(::semget(::ftok(setKeyFile, 1), 0, 0), semaphore, GETVAL);
}

inline int makeSegment()
{
    ::close(::open(arenaKeyFile, O_RDWR | O_CREAT, 0666));
    return ::shmget(::ftok(arenaKeyFile, 1), 65536, IPC_CREAT | 0666);
}

/// The bytes of a segment, attached.
class Attached
{
public:
    explicit Attached(int id = segment()) : bytes(static_cast<unsigned char *>(::shmat(id, nullptr, 0)))
    {
        if (bytes == reinterpret_cast<unsigned char *>(-1))
            throw std::runtime_error("there is no such segment");
    }
    ~Attached() { ::shmdt(bytes); }
    Attached(const Attached &) = delete;
    Attached &operator=(const Attached &) = delete;

    unsigned int u32(std::size_t place) const
    {
        unsigned int value;
        std::memcpy(&value, bytes + place, sizeof value);
        return value;
    }
    std::string text(std::size_t place) const { return reinterpret_cast<const char *>(bytes + place); }

    unsigned char *bytes;
};

struct Object {
    const char *name;
    std::size_t block;
    unsigned int blocks;
    std::size_t dataBytes;

    std::size_t place() const { return 128 + 124 * block; }
};
constexpr Object objects[] = {
    {"OutOnCopies", 0, 2, 80}, {"OutOffCopies", 2, 2, 80}, {"R20EEPROMS", 4, 3, 128}, {"R20BUFFERS", 7, 35, 4160}};

inline void expectNothingLeft()
{
    EXPECT_TRUE(reportArena().clean());
}

/// Expects that nothing is wrong and that so many processes share everything.
inline void expectShared(int processes)
{
    const ArenaReport report = reportArena();
    EXPECT_EQ(report.text(), "");
    EXPECT_EQ(report.registrations, processes);
    for (const unsigned int count : report.useCounts)
        EXPECT_EQ(count, static_cast<unsigned int>(processes));
}

class Processes : public testing::Test
{
protected:
    void SetUp() override { expectNothingLeft(); }
    void TearDown() override
    {
        ::semctl(semaphores(), 0, IPC_RMID);
        ::shmctl(segment(), IPC_RMID, nullptr);
    }
};

}  // namespace tests

#endif
