// The process's own calls reach the boards at their paths, and everything else at the C library.
#include "sim/inprocess/inprocess.h"

#include "tests/sim/sim_test.h"

#include <cerrno>
#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" int __open64_2(const char *path, int flags);

namespace sim::inprocess_test
{

class InProcessTest : public testing::Test
{
public:
    InProcessTest() { inProcessBoards().useClock(time); }
    ~InProcessTest() override { inProcessBoards().clear(); }

    // One exchange for the board's inputs in the layout of this process.
    static int getInputs(int descriptor, unsigned char *answer)
    {
        struct {
            unsigned int *statusWord;
            int pipeIndex;
            const unsigned char *outData;
            unsigned long outLength;
            unsigned char *inData;
            unsigned long *inLength;
            unsigned char request;
        } record{};
        unsigned int status = 99;
        unsigned long length = 99;
        record.statusWord = &status;
        record.inData = answer;
        record.inLength = &length;
        record.request = 75;
        const int result = ioctl(descriptor, 0x8400, &record);
        EXPECT_EQ(length, result == 0 ? 5U : 99U);
        return result;
    }

    static std::string attribute(const char *path)
    {
        FILE *file = fopen(path, "r");
        if (!file)
            return "none";
        char text[128] = {};
        const std::size_t size = fread(text, 1, sizeof text, file);
        fclose(file);
        return {text, size};
    }

    ManualClock time;
};

TEST_F(InProcessTest, AnExchangeGoesThroughADescriptor)
{
    VirtualBoard &board = inProcessBoards().plug(3, Model::R35).firmwareRunning();
    board.inputs().set(9, true);
    resetInProcessCalls();
    const int descriptor = open("/dev/Vexa_3", O_RDWR | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(openDescriptors(3), std::vector<int>{descriptor});
    EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(fcntl(descriptor, F_GETFL) & O_ACCMODE, O_RDWR);
    unsigned char inputs[256] = {};
    EXPECT_EQ(getInputs(descriptor, inputs), 0);
    EXPECT_EQ(inputs[1], 2);
    EXPECT_EQ(getInputs(descriptor, reinterpret_cast<unsigned char *>(8)), -1);
    EXPECT_EQ(errno, EFAULT);
    EXPECT_EQ(ioctl(descriptor, 0xc2108100, inputs), -1);
    EXPECT_EQ(errno, ENOTTY);
    board.faults().add(Fault::ioctlReturns(7));
    EXPECT_EQ(getInputs(descriptor, inputs), 7);
    EXPECT_EQ(inProcessCalls().opens, 1U);
    EXPECT_EQ(inProcessCalls().ioctls, 4U);
    EXPECT_EQ(inProcessCalls().lastOpenFlags, O_RDWR | O_CLOEXEC);
    close(descriptor);
    EXPECT_TRUE(openDescriptors(3).empty());
}

TEST_F(InProcessTest, EverySpellingOpensTheBoard)
{
    inProcessBoards().plug(0, Model::R20s);
    const char *path = "/dev/Vexa_0";
    const int lowest = dup(0);
    close(lowest);
    const int descriptors[] = {open(path, O_RDWR), open64(path, O_RDWR), openat(AT_FDCWD, path, O_RDWR),
                               openat64(AT_FDCWD, path, O_RDWR), __open64_2(path, O_RDWR)};
    EXPECT_EQ(descriptors[0], lowest) << "the lowest free number, as ever";
    EXPECT_EQ(openDescriptors(0).size(), std::size(descriptors));
    for (const int descriptor : descriptors)
        close(descriptor);
    for (const char *name : {"open", "open64", "openat", "openat64", "__open_2", "__open64_2", "__openat_2",
                             "__openat64_2", "ioctl", "fopen", "fopen64"}) {
        Dl_info mine{};
        Dl_info answering{};
        ASSERT_NE(dladdr(reinterpret_cast<void *>(&inProcessBoards), &mine), 0);
        ASSERT_NE(dladdr(dlsym(RTLD_DEFAULT, name), &answering), 0) << name;
        EXPECT_EQ(answering.dli_fbase, mine.dli_fbase) << name << " is answered elsewhere";
    }
}

TEST_F(InProcessTest, ADuplicateIsTheBoardAndAReusedNumberIsNot)
{
    const VirtualBoard &board = inProcessBoards().plug(0, Model::R35).firmwareRunning();
    unsigned char inputs[256];
    const int first = open("/dev/Vexa_0", O_RDWR);
    const int second = dup(first);
    close(first);
    EXPECT_EQ(getInputs(second, inputs), 0);
    const int other = open("/dev/null", O_RDWR);
    EXPECT_EQ(other, first);
    EXPECT_EQ(getInputs(other, inputs), -1);
    dup2(other, second);
    EXPECT_EQ(getInputs(second, inputs), -1);
    EXPECT_EQ(board.exchangeCount(), 1U);
    EXPECT_TRUE(openDescriptors(0).empty());
    close(second);
    close(other);
}

TEST_F(InProcessTest, AttributesAreReadAsFilesAndLeaveNoneOpen)
{
    inProcessBoards().plug(12, Model::R20s).highSpeed();
    const int before = dup(0);
    close(before);
    EXPECT_EQ(attribute("/sys/class/Vexa/Vexa_12/device/product"), "Sorvane R20s Board\n");
    EXPECT_EQ(attribute("/sys/class/Vexa/Vexa_12/device/speed"), "480\n");
    EXPECT_EQ(attribute("/sys/class/Vexa/Vexa_11/device/speed"), "none");
    EXPECT_EQ(attribute("/sys/class/Vexa/Vexa_012/device/speed"), "none");
    EXPECT_EQ(open("/sys/class/Vexa/Vexa_12/device/speed", O_RDWR), -1);
    EXPECT_EQ(errno, EACCES);
    const int after = dup(0);
    close(after);
    EXPECT_EQ(after, before);
}

TEST_F(InProcessTest, OtherFilesAreTheCLibrarys)
{
    char name[] = "/tmp/sorvane_sim_XXXXXX";
    close(mkstemp(name));
    unlink(name);
    const int descriptor = open(name, O_RDWR | O_CREAT | O_EXCL, 0600);
    ASSERT_GE(descriptor, 0);
    int waiting = -1;
    EXPECT_EQ(write(descriptor, "abc", 3), 3);
    EXPECT_EQ(ioctl(descriptor, FIONREAD, &waiting), 0);
    close(descriptor);
    EXPECT_EQ(attribute(name), "abc");
    unlink(name);
    inProcessBoards().plug(15, Model::R35).unplug();
    for (const char *nowhere : {"/dev/Vexa_15", "/dev/Vexa_16"}) {
        EXPECT_EQ(open(nowhere, O_RDWR), -1);
        EXPECT_EQ(errno, ENOENT);
    }
}

TEST_F(InProcessTest, AChildGoesOnWithItsOwnBoards)
{
    VirtualBoard &board = inProcessBoards().plug(0, Model::R35).firmwareRunning();
    const int descriptor = open("/dev/Vexa_0", O_RDWR);
    const pid_t child = fork();
    if (child == 0) {
        unsigned char inputs[256] = {};
        board.inputs().set(0, true);
        _exit(getInputs(descriptor, inputs) == 0 && inputs[0] == 1 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(board.inputs().level(0));
    close(descriptor);
}

}  // namespace sim::inprocess_test
