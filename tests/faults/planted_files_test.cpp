// What another user leaves at the names that the library uses: nothing of it is changed, nothing is written through it,
// and the library works all the same. This program does not use the library.
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/peer.h"

namespace tests
{

namespace
{

constexpr const char *keyFiles[] = {"/tmp/R20SharedMemory", "/tmp/Sem_R20Mutex"};
constexpr const char *folder = "/tmp/ours";
constexpr const char *ourFile = "/tmp/ours/precious";
constexpr const char *noFile = "/tmp/ours/absent";
constexpr uid_t somebodyElse = 65534;

/// Runs it in a child with the rights of another user; false where this user cannot become another.
template <class Deed>
bool asSomebodyElse(Deed deed)
{
    const pid_t child = ::fork();
    if (child == 0) {
        if (::setgid(somebodyElse) != 0 || ::setuid(somebodyElse) != 0)
            ::_exit(1);
        ::umask(0);
        deed();
        ::_exit(0);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return status == 0;
}

/// All that can be told of a file without following a link, its last changes included.
std::string stateOf(const char *path)
{
    struct stat status;
    if (::lstat(path, &status) != 0)
        return "absent";
    std::string text = std::to_string(status.st_mode) + " " + std::to_string(status.st_uid) + " " +
                       std::to_string(status.st_ino) + " " + std::to_string(status.st_mtim.tv_sec) + "." +
                       std::to_string(status.st_mtim.tv_nsec) + " " + std::to_string(status.st_ctim.tv_sec) + "." +
                       std::to_string(status.st_ctim.tv_nsec);
    if (S_ISREG(status.st_mode)) {
        std::ifstream file(path);
        text += " " + std::string(std::istreambuf_iterator<char>(file), {});
    }
    return text;
}

/// Where links in a sticky directory are followed for their owner alone, as Debian sets it.
bool linksOfOthersAreFollowed()
{
    int restricted = 0;
    std::ifstream("/proc/sys/fs/protected_symlinks") >> restricted;
    return restricted == 0;
}

/// A whole life that changes the shared state and sees its own change.
void expectUsableLibrary(const char *attached)
{
    Peer peer;
    EXPECT_EQ(peer.ask("attached"), attached);
    peer.ask("output 3 12 1");
    EXPECT_EQ(peer.ask("on 3"), "0010000000");
    EXPECT_TRUE(peer.quit());
}

class Planted : public testing::Test
{
protected:
    void SetUp() override
    {
        clear();
        std::filesystem::create_directory(folder);
        std::ofstream(ourFile) << "precious";
        ::chmod(folder, 0755);
        ::chmod(ourFile, 0600);
        if (!asSomebodyElse([] {}))
            GTEST_SKIP() << "SKIPPED: only root can leave files as another user";
    }
    void TearDown() override { clear(); }
    static void clear()
    {
        for (const char *path : keyFiles)
            std::filesystem::remove_all(path);
        std::filesystem::remove_all(folder);
    }
};

TEST_F(Planted, NothingAtTheKeyPathsIsChangedOrWrittenThrough)
{
    const struct {
        const char *what;
        void (*plant)(const char *path);
        const char *attached;
    } table[] = {
        {"a file that we may write", [](const char *path) { ::close(::open(path, O_CREAT | O_RDWR, 0666)); }, "yes"},
        {"a file for its owner alone", [](const char *path) { ::close(::open(path, O_CREAT | O_RDWR, 0600)); }, "yes"},
        {"a link to a file of ours", [](const char *path) { (void)!::symlink(ourFile, path); },
         linksOfOthersAreFollowed() ? "yes" : "no"},
        {"a link to where no file is", [](const char *path) { (void)!::symlink(noFile, path); }, "no"},
        {"a folder", [](const char *path) { ::mkdir(path, 0777); }, "yes"},
        {"a pipe, which nobody reads", [](const char *path) { ::mkfifo(path, 0666); }, "yes"},
    };
    for (const auto &row : table) {
        SCOPED_TRACE(row.what);
        ASSERT_TRUE(asSomebodyElse([&row] {
            for (const char *path : keyFiles)
                row.plant(path);
        }));
        const auto states = [] {
            return stateOf(keyFiles[0]) + "\n" + stateOf(keyFiles[1]) + "\n" + stateOf(ourFile) + "\n" +
                   stateOf(noFile) + "\n" + stateOf(folder);
        };
        const std::string before = states();
        ASSERT_NE(stateOf(keyFiles[0]), "absent");
        expectUsableLibrary(row.attached);
        EXPECT_EQ(states(), before);
        for (const char *path : keyFiles)
            std::filesystem::remove_all(path);
    }
}

TEST_F(Planted, WhoeverComesFirstWithUnusableObjectsIsLeftAlone)
{
    ASSERT_TRUE(asSomebodyElse([] {
        for (const char *path : keyFiles)
            ::close(::open(path, O_CREAT | O_RDWR, 0666));
        ::shmget(::ftok(keyFiles[0], 1), 4096, IPC_CREAT | 0666);
        ::semget(::ftok(keyFiles[1], 1), 1, IPC_CREAT | 0666);
    }));
    const int segment = ::shmget(::ftok(keyFiles[0], 1), 0, 0);
    const int set = ::semget(::ftok(keyFiles[1], 1), 0, 0);
    ASSERT_NE(segment, -1);
    ASSERT_NE(set, -1);
    expectUsableLibrary("no");
    EXPECT_EQ(::shmget(::ftok(keyFiles[0], 1), 0, 0), segment);
    EXPECT_EQ(::semget(::ftok(keyFiles[1], 1), 0, 0), set);
    EXPECT_EQ(::semctl(set, 0, GETVAL), 0);
    ::shmctl(segment, IPC_RMID, nullptr);
    ::semctl(set, 0, IPC_RMID);
}

std::string output(const std::string &command)
{
    std::FILE *pipe = ::popen(command.c_str(), "r");
    std::string text;
    char line[64];
    while (std::fgets(line, sizeof line, pipe))
        text += line;
    EXPECT_EQ(::pclose(pipe), 0);
    return text;
}

TEST(Exec, NoDescriptorIsHandedOn)
{
    const std::string listing = "ls /proc/self/fd";
    EXPECT_EQ(output(std::string(FAULTY_LIFE) + " 3 " + listing), output("exec " + listing));
}

}  // namespace

}  // namespace tests
