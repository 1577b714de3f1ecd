// Coins in and coins out: counted pulses and hoppers that pay.
#include "tests/support/open_board.h"

#include <cerrno>

namespace tests::coins
{

using namespace std::chrono_literals;

class CoinScenario : public BoardScenario
{
protected:
    int counted(_usbInputBitId input)
    {
        unsigned char counter = 0;
        EXPECT_TRUE(usb.ReadPulsedInputCounter(input, &counter));
        return counter;
    }

    void insert(unsigned int input, unsigned int coins)
    {
        board.inputs().pulse(input, coins);
        testClock().advance(coins * 40ms);
    }

    int release(unsigned short coins)
    {
        return usb.ReleaseParallelHopperCoins(usbInput5, 20, ActiveState(1), usbOutput37, coins, 9);
    }

    /// Whether the hopper pays, and the coins that it has paid.
    std::pair<bool, int> paying()
    {
        unsigned int active = 9;
        unsigned char paid = 0;
        EXPECT_TRUE(usb.GetPulsedInputStatus(usbInput5, &active, &paid));
        EXPECT_LE(active, 1U);
        EXPECT_EQ(board.outputs().lit(37), active == 1) << "the motor turns while it pays and only then";
        return {active == 1, paid};
    }

    unsigned int hopperStatus()
    {
        ReleaseHopperCoinsStatus status{};
        unsigned char paid = 0;
        EXPECT_TRUE(usb.GetParallelHopperStatus(usbInput5, &status, &paid));
        return status;
    }
};

using Paying = std::pair<bool, int>;

INSTANTIATE_TEST_SUITE_P(Models, CoinScenario, testing::ValuesIn(everyModel), nameOfModel);

TEST_P(CoinScenario, CoinsCountOnlyWhileTheCheckIsOnAndCreditIsTaken)
{
    EXPECT_TRUE(usb.ConfigurePulsedInput(usbInput3, 20, ActiveState(1)));
    insert(3, 2);
    EXPECT_EQ(counted(usbInput3), 0);
    EXPECT_TRUE(usb.BeginPulsedInputCheck(usbInput3));
    insert(3, 5);
    EXPECT_EQ(counted(usbInput3), 5);
    EXPECT_TRUE(usb.EndPulsedInputCheck(usbInput3));
    insert(3, 7);
    EXPECT_EQ(counted(usbInput3), 5);
    EXPECT_TRUE(usb.DecrementPulsedInputCounter(usbInput3));
    EXPECT_EQ(counted(usbInput3), 4);
    EXPECT_TRUE(usb.ResetPulsedInputCounter(usbInput3));
    EXPECT_EQ(counted(usbInput3), 0);
    EXPECT_TRUE(usb.DecrementPulsedInputCounter(usbInput3));
    EXPECT_EQ(counted(usbInput3), 0) << "no credit below none";
}

TEST_P(CoinScenario, APulseThatIsActiveLowCountsAsItEndsAndTheCounterIsOneByte)
{
    EXPECT_TRUE(usb.ConfigurePulsedInput(usbInput3, 9, ActiveState(0)));
    EXPECT_TRUE(usb.BeginPulsedInputCheck(usbInput3));
    board.inputs().pulse(3, 5);
    testClock().advance(60ms);
    EXPECT_EQ(counted(usbInput3), 2);
    testClock().advance(1s);
    EXPECT_EQ(counted(usbInput3), 5);
    insert(3, 253);
    EXPECT_EQ(counted(usbInput3), 2);
}

TEST_P(CoinScenario, AHopperPaysWhatItIsAskedAlsoWhenTheBoardIsClosed)
{
    board.hopper(5, 20);
    EXPECT_EQ(paying(), Paying(false, 0));
    EXPECT_TRUE(usb.BeginPulsedInputCheck(usbInput5));
    EXPECT_TRUE(release(3));
    EXPECT_EQ(paying(), Paying(true, 0));
    EXPECT_EQ(errorOf(usb, release(1)), sim::statusBusy);
    testClock().advance(450ms);
    EXPECT_EQ(paying(), Paying(true, 2));
    usb.close();
    testClock().advance(10s);
    ASSERT_TRUE(usb.InitPort(0));
    EXPECT_EQ(paying(), Paying(false, 3));
    EXPECT_EQ(counted(usbInput5), 3);
    EXPECT_EQ(board.hoppers().at(5).stock(), 17U);
}

TEST_P(CoinScenario, AHopperWith3CoinsAskedFor5Pays3AndStops)
{
    board.hopper(5, 3);
    EXPECT_TRUE(release(5));
    testClock().advance(2s);
    EXPECT_EQ(paying(), Paying(true, 3));
    testClock().advance(sim::coinTimeout);
    EXPECT_EQ(paying(), Paying(false, 3));
    EXPECT_EQ(hopperStatus(), sim::hopperRanOut);
}

TEST_P(CoinScenario, AJamAndADriveThatIsCutHoldTheCoinsBack)
{
    board.hopper(5, 20);
    EXPECT_TRUE(release(300));
    testClock().advance(250ms);
    board.hoppers().at(5).jam();
    testClock().advance(1s);
    EXPECT_EQ(paying(), Paying(true, 1));
    EXPECT_TRUE(board.state().hoppers.at(0).jammed);
    board.hoppers().at(5).jam(false);
    testClock().advance(250ms);
    EXPECT_EQ(paying(), Paying(true, 2));
    board.hoppers().at(5).jam();
    testClock().advance(10s);
    EXPECT_EQ(paying(), Paying(false, 2)) << "it has given up";
    EXPECT_EQ(hopperStatus(), sim::hopperRanOut);
    board.hoppers().at(5).jam(false);
    EXPECT_TRUE(release(3));
    testClock().advance(10s);
    EXPECT_EQ(paying(), Paying(false, 3)) << "the rest when asked again";
    EXPECT_TRUE(release(5));
    testClock().advance(450ms);
    EXPECT_TRUE(usb.SetOutputBit(usbOutput37, 0));
    EXPECT_EQ(paying(), Paying(false, 2)) << "it need not run out first";
    EXPECT_EQ(hopperStatus(), sim::hopperStopped);
    testClock().advance(3s);
    EXPECT_EQ(board.hoppers().at(5).stock(), 20U - 2 - 3 - 2);
}

TEST_P(CoinScenario, AReleaseDrivesItsOutputWhateverFlashes)
{
    board.hopper(5, 20).hopper(6, 1);
    EXPECT_TRUE(release(9));
    EXPECT_TRUE(usb.ReleaseParallelHopperCoins(usbInput6, 20, ActiveState(1), usbOutput37, 1, 9));
    const std::function<int()> requests[] = {
        [&] { return usb.SetOnPeriodOutputs({}); },
        [&] { return usb.SetOffPeriodOutputs({}); },
        [&] { return usb.SetOffPeriodOutputBit(usbOutputByte4, 5, 0); },
        [&] { return usb.SetOutputBit(usbOutput36, 0); },
    };
    int paid = 0;
    for (const auto &request : requests) {
        EXPECT_TRUE(request());
        testClock().advance(200ms);
        EXPECT_EQ(paying(), Paying(true, ++paid)) << "also after the other one by the same output is done";
    }
    unsigned char none[5] = {};
    EXPECT_TRUE(usb.SetOutputs(none));
    EXPECT_EQ(paying(), Paying(false, paid)) << "it switches every output off";
}

TEST_P(CoinScenario, AMotorThatIsSwitchedOnByHandDropsCoins)
{
    board.hopper(5, 20);
    const auto stockAfterASecond = [&](_usbOutputBitId output) {
        EXPECT_TRUE(usb.SetOutputBit(output, 1));
        testClock().advance(1s);
        EXPECT_TRUE(usb.SetOutputBit(output, 0));
        testClock().advance(1s);
        return board.hoppers().at(5).stock();
    };
    EXPECT_EQ(stockAfterASecond(usbOutput37), 20U) << "nothing says yet that this is its motor";
    EXPECT_TRUE(release(1));
    testClock().advance(1s);
    EXPECT_TRUE(usb.BeginPulsedInputCheck(usbInput5));
    EXPECT_EQ(stockAfterASecond(usbOutput37), 14U);
    EXPECT_EQ(counted(usbInput5), 5);
    EXPECT_EQ(stockAfterASecond(usbOutput36), 14U);
    board.hopper(5, 20, 36);
    EXPECT_EQ(stockAfterASecond(usbOutput36), 15U);
    EXPECT_TRUE(release(1));
    testClock().advance(3s);
    EXPECT_EQ(board.hoppers().at(5).stock(), 15U) << "a release by another output";
    EXPECT_EQ(hopperStatus(), sim::hopperRanOut);
}

TEST_P(CoinScenario, AReleaseIsStoppedWhereTheModelCan)
{
    board.hopper(5, 20);
    EXPECT_TRUE(release(10));
    testClock().advance(450ms);
    const bool canStop = GetParam() != sim::Model::R20;
    EXPECT_EQ(usb.StopHopperCoinRelease(usbInput5), canStop ? 1 : 0);
    EXPECT_EQ(usb.GetLastError(), canStop ? usbErrorNone : usbErrorNotSupported);
    testClock().advance(10s);
    EXPECT_EQ(paying(), canStop ? Paying(false, 2) : Paying(false, 10));
    EXPECT_EQ(hopperStatus(), canStop ? sim::hopperStopped : sim::hopperPaid);
}

TEST_P(CoinScenario, AReleaseWhoseAnswerIsLostIsNotAskedTwice)
{
    board.hopper(5, 20);
    board.faults().add(sim::Fault::ioctlFails(EINTR).on(112).carriedOut());
    EXPECT_EQ(errorOf(usb, release(3)), usbErrorTransfer);
    EXPECT_EQ(board.exchanges().size(), 1U);
    EXPECT_EQ(paying(), Paying(true, 0)) << "the status tells the caller";
    testClock().advance(10s);
    EXPECT_EQ(board.hoppers().at(5).stock(), 17U);
}

}  // namespace tests::coins
