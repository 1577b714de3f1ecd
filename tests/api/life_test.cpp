// Opening, sharing and closing boards: who holds the device node, and what a failure leaves behind.
#include "tests/support/open_board.h"

#include <climits>
#include <cstring>
#include <fcntl.h>
#include <vector>

namespace tests::life
{

class Life : public testing::Test
{
protected:
    void SetUp() override { sim::inProcessBoards().clear(); }
    void TearDown() override { sim::inProcessBoards().clear(); }

    static std::size_t open(int deviceNo) { return sim::openDescriptors(deviceNo).size(); }
    static void plugRunning(int deviceNo, sim::Model model = sim::Model::R35)
    {
        plug(deviceNo, model).firmwareRunning();
    }
};

TEST_F(Life, TheLastHolderOfABoardClosesItsNode)
{
    plugRunning(0);
    SorvaneUSB first;
    ASSERT_TRUE(first.InitPort(0));
    EXPECT_EQ(sim::inProcessCalls().lastOpenFlags & (O_ACCMODE | O_CLOEXEC), O_RDWR | O_CLOEXEC);
    {
        SorvaneUSB copy(first);
        SorvaneUSB assigned;
        assigned = copy;
        const SorvaneUSB constant(first);
        std::vector<SorvaneUSB> container(2, constant);
        EXPECT_EQ(open(0), 1u);
        EXPECT_EQ(first.close(), 1);
        usbInput inputs;
        EXPECT_TRUE(assigned.GetInputs(&inputs)) << "the board stays usable through a copy";
        EXPECT_FALSE(first.GetInputs(&inputs));
        EXPECT_EQ(open(0), 1u);
    }
    EXPECT_EQ(open(0), 0u);
}

TEST_F(Life, AssigningLetsGoOfTheBoardThatWasHeld)
{
    plugRunning(0);
    plugRunning(1);
    SorvaneUSB a, b, closed;
    ASSERT_TRUE(a.InitPort(0));
    ASSERT_TRUE(b.InitPort(1));
    SorvaneUSB &self = a;
    a = self;
    EXPECT_EQ(open(0), 1u);
    a = b;
    EXPECT_EQ(open(0), 0u);
    EXPECT_EQ(open(1), 1u);
    b = closed;
    EXPECT_EQ(open(1), 1u);
    a = b;
    EXPECT_EQ(open(1), 0u);
    EXPECT_EQ(a.close(), 1) << "closing what is closed succeeds";
}

TEST_F(Life, AMissingBoardLeavesTheOpenOneOpen)
{
    plugRunning(3);
    SorvaneUSB usb;
    ASSERT_TRUE(usb.InitPort(3));
    usb.SetOutputBit(_usbOutputBitId(99), 0);
    for (int missing : {4, 16, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(usb.InitPort(missing), 0) << missing;
        EXPECT_EQ(usb.GetLastError(), usbErrorParameter) << "opening sets no code";
        EXPECT_EQ(open(3), 1u);
    }
    ASSERT_TRUE(usb.InitPort(3)) << "opening again closes first";
    EXPECT_EQ(open(3), 1u);
}

TEST_F(Life, InitOpensTheLowestBoardOfSixteen)
{
    SorvaneUSB usb;
    usb.SetOutputBit(_usbOutputBitId(99), 0);
    EXPECT_EQ(usb.init(7), 0);
    for (int deviceNo : {15, 9}) {
        plugRunning(deviceNo, sim::Model::R20);
        usb.SetSASBusy(usbSerialPort0, 1);
        EXPECT_NE(usb.init(7), 0);
        EXPECT_EQ(usb.GetLastError(), usbErrorNone) << "init clears the codes before each attempt";
        EXPECT_EQ(open(deviceNo), 1u);
    }
    EXPECT_EQ(open(15), 0u);
}

TEST_F(Life, EveryDeviceNumberCanHoldABoardAtOnce)
{
    std::vector<SorvaneUSB> boards(16);
    for (int n = 0; n < 16; ++n) {
        plugRunning(n, everyModel[n % 3]);
        ASSERT_TRUE(boards[static_cast<std::size_t>(n)].InitPort(n)) << n;
    }
    for (unsigned int n = 0; n < 16; ++n) {
        EXPECT_TRUE(boards[n].SetOutputBit(_usbOutputBitId(n), 1));
        EXPECT_TRUE(sim::inProcessBoards().find(static_cast<int>(n))->outputs().lit(n));
    }
}

TEST_F(Life, ABoardTellsModelAndSpeed)
{
    for (sim::Model model : everyModel) {
        for (bool high : {false, true}) {
            OpenBoard open(model, 2, high);
            unsigned char type = 9, speed = 9;
            EXPECT_EQ(open.usb.GetFittedBoard(&type), 1);
            EXPECT_EQ(type, static_cast<int>(model));
            EXPECT_EQ(open.usb.GetBoardSpeed(&speed), 1);
            EXPECT_EQ(speed, high ? 2 : 1);
            EXPECT_EQ(errorOf(open.usb, open.usb.GetFittedBoard(nullptr)), usbErrorNullPointer);
            EXPECT_EQ(wire(open.board), "") << "nothing is asked of the board";
        }
    }
}

TEST_F(Life, WhatNeedsNoBoardWorksWithoutOne)
{
    SorvaneUSB usb;
    unsigned char text[4] = {9, 9, 9, 9};
    EXPECT_EQ(usb.GetProductVersion(text), 1);
    EXPECT_EQ(hex(text, 3), "33 00 09");
    EXPECT_EQ(usb.GetDllVersion(text), 1);
    EXPECT_EQ(hex(text, 4), "31 33 00 09");
    unsigned char speed = 9;
    EXPECT_EQ(usb.GetBoardSpeed(&speed), 1);
    EXPECT_EQ(speed, 9);
    EXPECT_EQ(usb.GetFittedBoard(&speed), 0);
    for (int (SorvaneUSB::*call)(unsigned char *) :
         {&SorvaneUSB::GetProductVersion, &SorvaneUSB::GetDllVersion, &SorvaneUSB::GetBoardSpeed}) {
        EXPECT_EQ(usb.ClearErrors(), 1);
        EXPECT_EQ(errorOf(usb, (usb.*call)(nullptr)), usbErrorNullPointer);
    }
}

TEST_F(Life, AllBoardsOfAProcessShareOneErrorCode)
{
    OpenBoard r20(sim::Model::R20, 0);
    OpenBoard r35(sim::Model::R35, 1);
    EXPECT_EQ(errorOf(r35.usb, r20.usb.SetOutputBrightness(11)), usbErrorParameter);
    EXPECT_TRUE(r20.usb.SetOutputBrightness(10));
    EXPECT_EQ(r20.usb.GetLastError(), usbErrorParameter) << "success on an R20 leaves a code";
    EXPECT_TRUE(r35.usb.SetOutputBrightness(10));
    EXPECT_EQ(r20.usb.GetLastError(), usbErrorNone) << "success on an R35 clears it";
}

TEST_F(Life, EveryCodeHasASentence)
{
    const std::string statusOnly = usbErrorText(99);
    int own = 0;
    for (int code = -130; code < 260; ++code) {
        const std::string text = usbErrorText(code);
        own += text != statusOnly;
        EXPECT_TRUE(code == 0 || text == statusOnly || text.ends_with("; or the board's own status.")) << text;
    }
    EXPECT_EQ(own, 12);
    const struct {
        int code;
        const char *about;
    } sentences[] = {{0, "No error"},          {2, "SPI transfer"},
                     {3, "pipe above 7"},      {6, "exchange"},
                     {7, "length is out"},     {8, "outside its range"},
                     {10, "baud rate"},        {11, "format 5"},
                     {16, "ramp table"},       {25, "lacks this function, the SRAM"},
                     {26, "An R20s lacks"},    {30, "null pointer"},
                     {31, "status of its own"}};
    for (const auto &row : sentences)
        EXPECT_NE(std::strstr(usbErrorText(row.code), row.about), nullptr) << row.code;
    SorvaneUSB usb;
    EXPECT_EQ(errorOf(usb, usb.init(0)), 0);
    EXPECT_NE(std::string(usbErrorText(usb.GetLastError())).find("no board was found"), std::string::npos);
}

struct BoardNumbers {
    unsigned char wanted;
    std::vector<unsigned int> numbersByDevice;
    int opens;  // device, -1: none
};

TEST_F(Life, InitUSBBoardOpensTheBoardThatReportsTheNumber)
{
    const BoardNumbers table[] = {
        {3, {5, 3}, 1},  {5, {5, 3}, 0}, {7, {1, 2, 3, 4, 5, 6, 0, 7}, 7},
        {9, {1, 2}, -1}, {15, {7}, -1},  {7, {0, 1, 2, 3, 4, 5, 6, 0, 7}, -1},
    };
    for (const BoardNumbers &row : table) {
        sim::inProcessBoards().clear();
        for (std::size_t n = 0; n < row.numbersByDevice.size(); ++n)
            plug(static_cast<int>(n), sim::Model::R20s)
                .firmwareRunning()
                .boardNumber(row.numbersByDevice[n])
                .inputs()
                .set(27, true);  // the next input behind the number
        SorvaneUSB usb;
        usb.ClearErrors();
        EXPECT_EQ(usb.InitUSBBoard(row.wanted), row.opens >= 0 ? 1 : 0);
        EXPECT_EQ(usb.GetLastError(), usbErrorNone);
        for (std::size_t n = 0; n < row.numbersByDevice.size(); ++n)
            EXPECT_EQ(open(static_cast<int>(n)), static_cast<int>(n) == row.opens ? 1u : 0u) << n;
    }
}

TEST_F(Life, InitUSBBoardOpensNothingForANumberAbove15AndKeepsABoardWhoseInputsCannotBeRead)
{
    plug(7, sim::Model::R35).firmwareRunning().faults().add(sim::Fault::status(99).on(75, 1));
    SorvaneUSB usb;
    sim::resetInProcessCalls();
    EXPECT_EQ(errorOf(usb, usb.InitUSBBoard(16)), usbErrorParameter);
    EXPECT_EQ(sim::inProcessCalls().opens, 0u);
    EXPECT_EQ(errorOf(usb, usb.InitUSBBoard(0)), 99);
    EXPECT_EQ(open(7), 1u);
    usb.close();
    EXPECT_EQ(open(7), 0u);
}

}  // namespace tests::life
