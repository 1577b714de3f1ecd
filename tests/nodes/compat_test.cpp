// The calls of a 32-bit program, as the kernel hands them to the server of a node: with its mark, and with addresses of
// 32 bits in a record of 28 bytes. This process plays the kernel and the program, so that it needs neither.
#include "sim/driver/driver.h"
#include "sim/nodes/node.h"

#include <cstring>
#include <gtest/gtest.h>
#include <linux/fuse.h>
#include <sys/mman.h>
#include <sys/socket.h>

namespace
{

using namespace sim;

struct Record32 {
    std::uint32_t status, pipeIndex, outData, outLength, inData, inLength;
    unsigned char request, padding[3];
};
static_assert(sizeof(Record32) == 28);

// What the program has in its lower 4 GiB.
struct ProgramMemory {
    Record32 record;
    std::uint32_t status, count, behindCount;
    unsigned char payload[16], answer[64];
};

class CompatTest : public testing::Test
{
protected:
    CompatTest() : boards_(clock_)
    {
        boards_.plug(0, Model::R35).firmwareRunning().inputs().set(9, true);
        int ends[2];
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
        kernel_ = OwnedFd(ends[0]);
        // Its thread outlives the test.
        static std::vector<std::unique_ptr<Node>> nodes;
        nodes.push_back(std::make_unique<Node>(boards_, 0, OwnedFd(ends[1])));
        memory_ = static_cast<ProgramMemory *>(
            mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_32BIT, -1, 0));
        EXPECT_NE(memory_, MAP_FAILED);
        const fuse_init_in init{FUSE_KERNEL_VERSION, FUSE_KERNEL_MINOR_VERSION, 65536, 0, 0, {}};
        EXPECT_EQ(ask(FUSE_INIT, init).error, 0);
        fuse_open_out opened{};
        EXPECT_EQ(ask(FUSE_OPEN, fuse_open_in{O_RDWR, 0}, &opened), 0);
        handle_ = opened.fh;
    }
    ~CompatTest() override { munmap(memory_, 4096); }

    static std::uint32_t low(const void *pointer)
    {
        return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
    }

    template <class In>
    fuse_out_header ask(std::uint32_t operation, const In &in)
    {
        struct {
            fuse_in_header header;
            In in;
        } request{};
        request.header.len = sizeof request;
        request.header.opcode = operation;
        request.header.unique = ++unique_;
        request.header.nodeid = FUSE_ROOT_ID;
        request.header.pid = static_cast<std::uint32_t>(getpid());
        request.in = in;
        EXPECT_EQ(send(kernel_.get(), &request, sizeof request, 0), static_cast<ssize_t>(sizeof request));
        answer_.resize(65536);
        const ssize_t size = recv(kernel_.get(), answer_.data(), answer_.size(), 0);
        fuse_out_header header{};
        EXPECT_GE(size, static_cast<ssize_t>(sizeof header));
        std::memcpy(&header, answer_.data(), sizeof header);
        EXPECT_EQ(header.unique, unique_);
        return header;
    }

    template <class In, class Out>
    int ask(std::uint32_t operation, const In &in, Out *out)
    {
        const fuse_out_header header = ask(operation, in);
        if (header.error == 0)
            std::memcpy(out, answer_.data() + sizeof header, sizeof *out);
        return header.error;
    }

    // The result of the program's ioctl with this argument.
    int ioctl32(std::uint32_t number, std::uint32_t argument)
    {
        fuse_ioctl_out result{};
        const fuse_ioctl_in call{handle_, FUSE_IOCTL_COMPAT | FUSE_IOCTL_32BIT, number, argument, 0, 0};
        const int error = ask(FUSE_IOCTL, call, &result);
        return error != 0 ? error : result.result;
    }

    Record32 goodRecord(unsigned char request, std::uint32_t length)
    {
        return {low(&memory_->status),
                0,
                low(memory_->payload),
                length,
                low(memory_->answer),
                low(&memory_->count),
                request,
                {}};
    }

    ManualClock clock_;
    VirtualBoards boards_;
    OwnedFd kernel_;
    ProgramMemory *memory_ = nullptr;
    std::uint64_t handle_ = 0;
    std::uint64_t unique_ = 0;
    std::vector<char> answer_;
};

TEST_F(CompatTest, anExchangeReadsAndWritesRecordsOf32Bits)
{
    memory_->status = 99;
    memory_->behindCount = 0xA5A5A5A5;
    memory_->record = goodRecord(75, 0);
    ASSERT_EQ(ioctl32(recordRequest, low(&memory_->record)), 0);
    EXPECT_EQ(memory_->status, 0u);
    EXPECT_EQ(memory_->count, 5u);
    EXPECT_EQ(memory_->answer[1], 2);
    EXPECT_EQ(memory_->behindCount, 0xA5A5A5A5) << "the count of a 32-bit program has four bytes";

    memory_->payload[0] = 6;
    memory_->record = goodRecord(77, 10);
    ASSERT_EQ(ioctl32(recordRequest, low(&memory_->record)), 0);
    const auto lock = boards_.find(0)->lock();
    EXPECT_EQ(boards_.find(0)->outputs().onPattern()[0], 6);
}

TEST_F(CompatTest, wrongPointersChangeNothing)
{
    memory_->payload[0] = 6;
    for (std::uint32_t Record32::*pointer : {&Record32::status, &Record32::outData, &Record32::inLength}) {
        for (const std::uint32_t wrong : {0U, 8U, 0xFFFFFFF8U}) {
            memory_->record = goodRecord(77, 10);
            memory_->record.*pointer = wrong;
            EXPECT_EQ(ioctl32(recordRequest, low(&memory_->record)), -EFAULT) << wrong;
        }
    }
    EXPECT_EQ(ioctl32(recordRequest, 0), -EFAULT);
    EXPECT_EQ(ioctl32(packetRequest, low(&memory_->record)), -ENOTTY);
    const auto lock = boards_.find(0)->lock();
    EXPECT_EQ(boards_.find(0)->outputs().onPattern()[0], 0);
}

}  // namespace
