// Runs of blocks, in an arena of the test's own.
#include "shared/arena_check.h"
#include "shared/sharedimp.h"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <vector>

namespace tests::arena
{

SharedMemoryArenaID arenaID(const char *name, unsigned int size)
{
    return {{name, 0}, {"TestArenaMutex", 0, 2}, size};
}

/// An arena in memory of its own.
struct LocalArena {
    explicit LocalArena(unsigned int size = 65536) : words(size / sizeof(unsigned int)), id(arenaID("Local", size))
    {
        header = new (words.data()) SharedMemoryArenaHeader(id, size);
    }
    unsigned int indexOf(const SharedMemoryBlockHeader *run) const
    {
        return static_cast<unsigned int>(run - header->block(0));
    }
    std::vector<unsigned int> words;
    SharedMemoryArenaID id;
    SharedMemoryArenaHeader *header;
};

TEST(Arena, GivesTheFirstRunThatIsLongEnoughAndSplitsIt)
{
    LocalArena arena;
    const struct {
        unsigned int size, index, blocks;
    } table[] = {{204, 0, 2}, {252, 2, 3}, {4284, 5, 35}, {124, 40, 1}, {125, 41, 2}};
    for (const auto &row : table) {
        SharedMemoryBlockHeader *run = arena.header->AllocateBlock(row.size);
        ASSERT_TRUE(run);
        EXPECT_EQ(arena.indexOf(run), row.index);
        EXPECT_EQ(run->blockCount, row.blocks);
        EXPECT_EQ(run->useCount, 1u);
    }
    EXPECT_EQ(arena.header->block(43)->blockCount, 526u - 43u);
    arena.header->block(2)->useCount = 0;
    EXPECT_EQ(arena.indexOf(arena.header->AllocateBlock(200)), 2u) << "a free run in between is used first";
    EXPECT_EQ(arena.indexOf(arena.header->AllocateBlock(1)), 4u) << "and what was left of it";
    const unsigned int rest = (526 - 43) * 124;
    for (unsigned int tooMuch : {rest + 1, 0xFFFFFFFFu, 0u})
        EXPECT_EQ(arena.header->AllocateBlock(tooMuch), nullptr) << tooMuch;
    EXPECT_TRUE(arena.header->AllocateBlock(rest));
    EXPECT_EQ(new (arena.header) SharedMemoryBlockHeader, nullptr);
    EXPECT_EQ(examineArena(arena.header, arena.id, 65536), ArenaState::Whole);
}

TEST(Arena, FindsAnObjectByNameAndNumber)
{
    LocalArena arena;
    using List = SharedMemoryLocalListElement;
    for (int k = 0; k < 3; ++k)
        arena.header->AllocateBlock(200)->Name(SharedMemoryObjectID("Object", k));
    EXPECT_EQ(arena.indexOf(List::FindSharedMemoryObject(arena.header, {"Object", 1})), 2u);
    EXPECT_EQ(List::FindSharedMemoryObject(arena.header, {"Object", 3}), nullptr);
    EXPECT_EQ(List::FindSharedMemoryObject(arena.header, {"Objec", 1}), nullptr);
    EXPECT_EQ(List::FindSharedMemoryObject(nullptr, {"Object", 1}), nullptr);
    EXPECT_EQ(arena.indexOf(List::FindSharedMemoryObject(arena.header, {"", 0})), 6u) << "free runs are compared, too";
    for (const unsigned int damaged : {0u, 525u}) {
        arena.header->block(2)->blockCount = damaged;
        for (int k = 1; k <= 2; ++k)
            EXPECT_EQ(List::FindSharedMemoryObject(arena.header, {"Object", k}), nullptr) << "it ends the search";
    }
}

TEST(Arena, SmallSegmentsHaveNoBlocks)
{
    EXPECT_EQ(blocksInSegment(0), 0u);
    EXPECT_EQ(blocksInSegment(251), 0u);
    EXPECT_EQ(blocksInSegment(252 + 123), 0u);
    EXPECT_EQ(blocksInSegment(252 + 124), 1u);
}

TEST(Segment, IsMadeOnceAndRemovedByTheLast)
{
    const SharedMemoryArenaID id = arenaID("TestSegment", 4096);
    const auto descriptors = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const auto before = descriptors();
    LinuxSharedMemory first(id);
    ASSERT_TRUE(first.address);
    EXPECT_EQ(descriptors(), before) << "its key file is closed again";
    EXPECT_TRUE(first.MeFirst());
    EXPECT_EQ(first.GetSize(), 4096u);
    std::memcpy(first.address, "mark", sizeof "mark");
    LinuxSharedMemory second(id);
    EXPECT_FALSE(second.MeFirst());
    EXPECT_STREQ(static_cast<char *>(second.address), "mark");
    EXPECT_TRUE(first.Delete());
    EXPECT_TRUE(first.Delete()) << "a second time does nothing";
    const key_t key = ::ftok("/tmp/TestSegment", 1);
    EXPECT_NE(::shmget(key, 0, 0), -1);
    LinuxSharedMemory larger(arenaID("TestSegment", 8192));
    EXPECT_EQ(larger.address, nullptr) << "a segment that is too small is not attached";
    EXPECT_FALSE(larger.Lock());
    EXPECT_FALSE(larger.UnLock());
    EXPECT_TRUE(second.Delete());
    EXPECT_EQ(::shmget(key, 0, 0), -1);
}

TEST(Segment, AnArenaIsOneElementAProcess)
{
    using List = SharedMemoryLocalListElement;
    const SharedMemoryArenaID id = arenaID("TestElement", 4096);
    EXPECT_EQ(List::SearchForSharedMemoryArenaHeader(id), nullptr);
    List *element = List::GetSharedMemoryArenaHeader(id);
    SharedMemoryArenaID otherSize = id;
    otherSize.size = 9999;
    EXPECT_EQ(List::GetSharedMemoryArenaHeader(otherSize), element) << "the size takes no part";
    ASSERT_TRUE(element->arenaHeader);
    EXPECT_EQ(element->arenaHeader->blockCount, 31u);
    element->sharedMemory->referenceCount = 2;
    List::ReleaseSharedMemoryElement(element);
    EXPECT_EQ(List::SearchForSharedMemoryArenaHeader(id), element);
    List::ReleaseSharedMemoryElement(element);
    EXPECT_EQ(List::SearchForSharedMemoryArenaHeader(id), nullptr);
    EXPECT_EQ(::shmget(::ftok("/tmp/TestElement", 1), 0, 0), -1);
    EXPECT_EQ(Mutex::FindMutex(id.mutexID), nullptr);
}

}  // namespace tests::arena
