// A virtual board that the library has opened, and its exchanges as text.
#ifndef SORVANE_TESTS_SUPPORT_OPEN_BOARD_H
#define SORVANE_TESTS_SUPPORT_OPEN_BOARD_H

#include "sim/inprocess/inprocess.h"

#include <gtest/gtest.h>
#include <numeric>
#include <sorvaneusb.h>
#include <string>

namespace tests
{

/// No board has it.
const _usbSerialPort port2 = _usbSerialPort(2);

constexpr sim::Model everyModel[] = {sim::Model::R20, sim::Model::R20s, sim::Model::R35};

/// The clock of all boards of this process; it stands still unless a test advances it.
inline sim::ManualClock &testClock()
{
    static sim::ManualClock clock;
    return clock;
}

/// A board behind a device number, in place of the one that was there.
inline sim::VirtualBoard &plug(int deviceNo, sim::Model model)
{
    sim::inProcessBoards().useClock(testClock());
    return sim::inProcessBoards().plug(deviceNo, model);
}

/// Code, pipe and payload of what the board was asked since its trace was cleared: "78/1 0A 1F; 80/1".
std::string wire(const sim::VirtualBoard &board);

/// Bytes as text: "0A 1F".
std::string hex(const unsigned char *bytes, std::size_t count);

/// So many bytes that count up.
inline sim::Bytes counting(std::size_t count)
{
    sim::Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(1));
    return bytes;
}

/// The error of a call that is to fail.
inline int errorOf(SorvaneUSB &usb, int result)
{
    EXPECT_EQ(result, 0);
    return usb.GetLastError();
}

/// Opened with a running firmware, its trace cleared.
struct OpenBoard {
    explicit OpenBoard(sim::Model model, int deviceNo = 0, bool highSpeed = false) : board(plug(deviceNo, model))
    {
        board.firmwareRunning();
        if (highSpeed)
            board.highSpeed();
        EXPECT_TRUE(usb.InitPort(deviceNo)) << nameOf(model) << ", error " << usb.GetLastError();
        usb.ClearErrors();
        board.clearExchanges();
    }
    ~OpenBoard() { usb.close(); }

    sim::VirtualBoard &board;
    SorvaneUSB usb;
};

inline std::string nameOfModel(const testing::TestParamInfo<sim::Model> &info)
{
    return nameOf(info.param);
}

/// The same story on every model.
class BoardScenario : public testing::TestWithParam<sim::Model>
{
protected:
    OpenBoard open{GetParam()};
    SorvaneUSB &usb = open.usb;
    sim::VirtualBoard &board = open.board;
};

}  // namespace tests

#endif
