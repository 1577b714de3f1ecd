// What the two driver protocols make of what can go wrong, through the public door to any request.
#include "tests/support/open_board.h"

#include <cerrno>
#include <cstring>

namespace tests::transport
{

using sim::Fault;
using sim::Model;

struct Failure {
    Model model;
    const char *what;
    Fault fault;
    int error;
    unsigned long countAfter;  // of a count that was 77 before
};

TEST(Transport, TellsFailuresApart)
{
    const Failure table[] = {
        {Model::R20, "the driver fails", Fault::ioctlFails(EIO), 6, 77},
        {Model::R20, "the driver is interrupted", Fault::ioctlFails(EINTR), 6, 77},
        {Model::R20, "the driver returns a positive result", Fault::ioctlReturns(1), 6, 77},
        {Model::R20, "no byte came", Fault::packetCount(0), 7, 77},
        {Model::R20, "one byte came", Fault::packetCount(1), 7, 77},
        {Model::R20, "65 bytes came", Fault::packetCount(65), 7, 77},
        {Model::R20, "the count is absurd", Fault::packetCount(0xFFFFFFFF), 7, 77},
        {Model::R20, "another request is echoed", Fault::echo(76), 6, 77},
        {Model::R20, "the board refuses", Fault::status(0x1E), 30, 77},
        {Model::R20, "the status is a signed byte", Fault::status(0xFE), -2, 77},
        {Model::R20, "the lowest status", Fault::status(0x80), -128, 77},
        {Model::R20s, "the driver fails", Fault::ioctlFails(EIO), 6, 0},
        {Model::R20s, "the driver is interrupted", Fault::ioctlFails(EINTR), 6, 0},
        {Model::R20s, "the driver returns a positive result", Fault::ioctlReturns(1), 6, 0},
        {Model::R35, "the driver fails", Fault::ioctlFails(ENODEV), 6, 0},
        {Model::R35, "the status word is 32 bits", Fault::status(0x12345678), 0x12345678, 0},
        {Model::R35, "the status word is negative", Fault::status(0xFFFFFFFF), -1, 0},
    };
    for (const Failure &row : table) {
        SCOPED_TRACE(std::string(sim::nameOf(row.model)) + ": " + row.what);
        OpenBoard open(row.model);
        open.board.faults().add(row.fault);
        sim::resetInProcessCalls();
        unsigned char answer[256] = {9, 9};
        unsigned long count = 77;
        EXPECT_EQ(errorOf(open.usb, open.usb.PerformUSBIO(75, 1, nullptr, 0, answer, &count)), row.error);
        if (row.countAfter == 77 || row.error == 6) {
            EXPECT_EQ(count, row.countAfter);
            EXPECT_EQ(hex(answer, 2), "09 09");
        }
        EXPECT_EQ(sim::inProcessCalls().ioctls, 1u) << "an exchange is never repeated";
    }
}

TEST(Transport, DeliversUpTo62BytesOfAnR20AndAllOfTheOthers)
{
    for (Model model : everyModel) {
        for (std::size_t length : {0u, 1u, 62u, 256u}) {
            if (model == Model::R20 && length > 62)
                continue;
            OpenBoard open(model);
            open.board.answerNext(sim::Bytes(length, 0x5A));
            unsigned char answer[257] = {};
            unsigned long count = 77;
            EXPECT_EQ(open.usb.PerformUSBIO(75, 1, nullptr, 0, answer, &count), 1);
            EXPECT_EQ(count, length);
            EXPECT_EQ(answer[length], 0);
            if (length) {
                EXPECT_EQ(answer[length - 1], 0x5A);
            }
        }
    }
}

TEST(Transport, TakesNoAnswerBufferButNeedsACount)
{
    for (Model model : everyModel) {
        OpenBoard open(model);
        unsigned long count = 77;
        EXPECT_EQ(open.usb.PerformUSBIO(75, 1, nullptr, 0, nullptr, &count), 1);
        EXPECT_EQ(count, 5u);
        open.board.clearExchanges();
        EXPECT_EQ(errorOf(open.usb, open.usb.PerformUSBIO(75, 1, nullptr, 0, nullptr, nullptr)), usbErrorNullPointer);
        EXPECT_EQ(wire(open.board), "");
    }
}

TEST(Transport, RefusesAPipeAbove7OnTheRecordProtocol)
{
    OpenBoard open(Model::R20s);
    unsigned long count = 77;
    testing::internal::CaptureStderr();
    EXPECT_EQ(open.usb.PerformUSBIO(75, 8, nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "pipeNum = 8\n");
    EXPECT_EQ(open.usb.GetLastError(), usbErrorPipeNumber);
    EXPECT_EQ(wire(open.board), "");
    EXPECT_EQ(open.usb.PerformUSBIO(94, 7, nullptr, 0, nullptr, &count), 1);
    EXPECT_EQ(wire(open.board), "94/7");
}

TEST(Transport, SendsAnR20PayloadOf511BytesAndNoMore)
{
    OpenBoard open(Model::R20);
    open.board.faults().add(Fault::answer({}).forever());
    unsigned char payload[512];
    std::memset(payload, 0x5A, sizeof payload);
    unsigned long count = 77;
    EXPECT_EQ(open.usb.PerformUSBIO(71, 6, payload, 511, nullptr, &count), 1);
    EXPECT_EQ(open.board.exchanges().back().sent.size(), 511u);
    open.board.clearExchanges();
    for (unsigned long length : {512UL, ~0UL, 0xFFFFFFFFUL}) {
        EXPECT_EQ(errorOf(open.usb, open.usb.PerformUSBIO(71, 6, payload, length, nullptr, &count)), usbErrorLength);
    }
    EXPECT_EQ(wire(open.board), "");
    EXPECT_EQ(open.usb.PerformUSBIO(71, 6, nullptr, 3, nullptr, &count), 1);
    EXPECT_EQ(wire(open.board), "71/6 00 00 00") << "a payload that is not there is zeros";
}

}  // namespace tests::transport
