// What this user or another leaves at the names that the library uses: nothing of it is changed, nothing is written
// through it, and the library works all the same. This program does not use the library.
#include "tests/processes/outside.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tests::planted
{

namespace
{

constexpr const char *keyFiles[] = {arenaKeyFile, setKeyFile};
constexpr const char *folder = "/tmp/ours";
constexpr const char *ourFile = "/tmp/ours/precious";
constexpr const char *noFile = "/tmp/ours/absent";
constexpr uid_t somebodyElse = 65534;

/// Runs it in a child with the rights of the user; false where this user cannot become that one.
template <class Deed>
bool as(uid_t user, Deed deed)
{
    const pid_t child = ::fork();
    if (child == 0) {
        if (user != ::getuid() && (::setgid(user) != 0 || ::setuid(user) != 0))
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
    EXPECT_EQ(peer.ask("bit 12 1"), "1");
    EXPECT_EQ(peer.ask("on"), "0010000000");
    EXPECT_TRUE(peer.quit());
}

class Planted : public Processes
{
protected:
    void SetUp() override
    {
        clear();
        std::filesystem::create_directory(folder);
        std::ofstream(ourFile) << "precious";
        ::chmod(folder, 0755);
        ::chmod(ourFile, 0600);
        if (!as(somebodyElse, [] {}))
            std::puts("SKIPPED: only root can leave files as another user");
        else
            users.push_back(somebodyElse);
    }
    void TearDown() override
    {
        Processes::TearDown();
        clear();
    }
    static void clear()
    {
        for (const char *path : {keyFiles[0], keyFiles[1], folder})
            std::filesystem::remove_all(path);
    }

    std::vector<uid_t> users = {::getuid()};
};

TEST_F(Planted, NothingAtTheKeyPathsIsChangedOrWrittenThrough)
{
    const auto states = [] {
        std::string text;
        for (const char *path : {keyFiles[0], keyFiles[1], ourFile, noFile, folder})
            text += stateOf(path) + "\n";
        return text;
    };
    const struct {
        const char *what;
        void (*plant)(const char *path);
        bool isAKey = true;
        bool isALink = false;
    } table[] = {
        {"a file that we may write", [](const char *path) { std::ofstream(path) << "content"; }},
        {"a file for its owner alone", [](const char *path) { ::close(::open(path, O_CREAT | O_RDWR, 0600)); }},
        {"a link to a file of ours", [](const char *path) { (void)!::symlink(ourFile, path); }, true, true},
        {"a link to where no file is", [](const char *path) { (void)!::symlink(noFile, path); }, false, true},
        {"a folder", [](const char *path) { ::mkdir(path, 0777); }},
        {"a pipe, which nobody reads", [](const char *path) { ::mkfifo(path, 0666); }},
    };
    for (uid_t user : users) {
        for (const auto &row : table) {
            SCOPED_TRACE(row.what + std::string(" of user ") + std::to_string(user));
            ASSERT_TRUE(as(user, [&row] {
                for (const char *path : keyFiles)
                    row.plant(path);
            }));
            const std::string before = states();
            ASSERT_NE(stateOf(keyFiles[0]), "absent");
            const bool refused = row.isALink && user != ::getuid() && !linksOfOthersAreFollowed();
            expectUsableLibrary(row.isAKey && !refused ? "yes" : "no");
            EXPECT_EQ(states(), before);
            for (const char *path : keyFiles)
                std::filesystem::remove_all(path);
        }
    }
}

TEST_F(Processes, HandNoDescriptorOn)
{
    Peer peer;
    EXPECT_EQ(peer.ask("do open").substr(0, 10), "= open 1 0");
    const int open = std::stoi(peer.ask("descriptors").substr(12));
    int handedOn = 0;
    for (std::string line = peer.ask("list"); !line.empty(); line = peer.answer())
        ++handedOn;
    EXPECT_EQ(handedOn, open - 1) << "the board's";
}

}  // namespace

}  // namespace tests::planted
