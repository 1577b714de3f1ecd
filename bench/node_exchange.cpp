// What an exchange through a device node costs, beside an ioctl of the same size on a file system that does nothing
// else: both protocols, medians of one run in which they take turns, so many exchanges in a row each.
#include "sim/nodes/attributes.h"
#include "sim/nodes/board_process.h"
#include "sim/nodes/node.h"
#include "sim/system/failure.h"
#include "tests/support/driver_call.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <sys/ioctl.h>

namespace
{

constexpr int exchanges = 10000;
constexpr int inARow = 500;
constexpr int packetBoard = 0;
constexpr int recordBoard = 1;
constexpr int bareFile = 2;

constexpr unsigned char modifyOutputs = 77;
constexpr unsigned long payloadLength = 10;

fuse_lowlevel_ops bareOperations()
{
    fuse_lowlevel_ops operations{};
    operations.getattr = [](fuse_req_t request, fuse_ino_t inode, fuse_file_info *) {
        const struct stat attributes = sim::attributesOf(inode, S_IFREG | 0666);
        fuse_reply_attr(request, &attributes, sim::forever);
    };
    operations.open = [](fuse_req_t request, fuse_ino_t, fuse_file_info *file) { fuse_reply_open(request, file); };
    operations.ioctl = [](fuse_req_t request, fuse_ino_t, unsigned int, void *, fuse_file_info *, unsigned int,
                          const void *in, size_t size, size_t) { fuse_reply_ioctl(request, 0, in, size); };
    return operations;
}

// Where the scheduler puts a server, beside its caller or on another core, costs more than what is measured here.
void stayOnThisCore()
{
    cpu_set_t core;
    CPU_ZERO(&core);
    CPU_SET(sim::checked(::sched_getcpu(), "asking for the core"), &core);
    sim::checked(::sched_setaffinity(0, sizeof core, &core), "staying on a core");
}

void serve(sim::BoardService &service)
{
    sim::SteadyClock clock;
    sim::VirtualBoards boards(clock);
    boards.plug(packetBoard, sim::Model::R20).firmwareRunning();
    boards.plug(recordBoard, sim::Model::R35).firmwareRunning();
    sim::MountedDevices devices = service.receiveDevices();
    const sim::Node packets(boards, packetBoard, std::move(devices.nodes[packetBoard]));
    const sim::Node records(boards, recordBoard, std::move(devices.nodes[recordBoard]));
    const sim::FileServer bare(bareOperations(), nullptr, std::move(devices.nodes[bareFile]));
    service.ready();
    service.waitForEnd();
    service.leave();
}

double microseconds(int file, unsigned long number, void *argument)
{
    const auto start = std::chrono::steady_clock::now();
    sim::checked(::ioctl(file, number, argument), "ioctl");
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> &times)
{
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

int openNode(int deviceNo)
{
    const std::string node = "/dev/Vexa_" + std::to_string(deviceNo);
    return sim::checked(::open(node.c_str(), O_RDWR | O_CLOEXEC), "opening " + node);
}

void report(const char *what, std::vector<double> &node, std::vector<double> &bare)
{
    const double nodeTime = median(node);
    const double bareTime = median(bare);
    std::printf("%-8s node %6.2f us   bare %6.2f us   %.2f times\n", what, nodeTime, bareTime, nodeTime / bareTime);
}

void measure()
{
    const int packets = openNode(packetBoard);
    const int records = openNode(recordBoard);
    const int bare = openNode(bareFile);
    const unsigned char payload[payloadLength] = {};
    unsigned char in[256];
    unsigned long count = 0;
    std::int32_t status = 0;
    Record record{&status, 0, payload, payloadLength, in, &count, modifyOutputs};
    std::vector<double> packetTimes, barePacketTimes, recordTimes, bareRecordTimes;
    const auto packet = [&](int file, std::vector<double> &times) {
        Packet sent{1, 1, payloadLength + 1, 64, {modifyOutputs}};
        times.push_back(microseconds(file, packetNumber, &sent));
        if (sent.data[1] != 0)
            throw std::runtime_error("a packet was refused");
    };
    const auto row = [](const auto &exchange) {
        for (int n = 0; n < inARow; ++n)
            exchange();
    };
    for (int done = 0; done < exchanges; done += inARow) {
        row([&] { packet(packets, packetTimes); });
        row([&] { packet(bare, barePacketTimes); });
        row([&] { recordTimes.push_back(microseconds(records, recordNumber, &record)); });
        if (status != 0)
            throw std::runtime_error("a record was refused");
        row([&] { bareRecordTimes.push_back(microseconds(bare, recordNumber, &record)); });
    }
    std::printf("median of %d exchanges\n", exchanges);
    report("packet", packetTimes, barePacketTimes);
    report("record", recordTimes, bareRecordTimes);
}

}  // namespace

int main()
{
    try {
        stayOnThisCore();
        sim::obtainTheRightToMount();
        sim::BoardProcess boards(serve);
        boards.serve(sim::mountDevices({packetBoard, recordBoard, bareFile}, "bench"));
        measure();
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "node_exchange: %s\n", error.what());
        return sim::statusOfFailure;
    }
}
