// Coins in, coins out: counts the coins of a pulsed input, then pays out of a parallel hopper and looks whether every
// coin really came.
//
// A hopper goes on paying when its program ends: the board runs it by itself. So whoever starts one also stops it on
// every way out.
#include "report.h"

#include <chrono>
#include <cstdio>
#include <thread>

namespace
{

constexpr _usbInputBitId coinInput = usbInput2;
constexpr _usbInputBitId hopperInput = usbInput5;
constexpr _usbOutputBitId hopperDrive = usbOutput20;
const ActiveState activeHigh = ActiveState(1);  // as the board's firmware defines it
constexpr unsigned short coinsToPay = 5;

/// Stops the hopper when the scope is left, also on a failure in between.
class HopperStop
{
public:
    explicit HopperStop(SorvaneUSB &board) : board_(board) {}
    ~HopperStop()
    {
        // An R20 cannot be told to stop (error 25); it ends by itself after the coins that it was asked for.
        if (!board_.StopHopperCoinRelease(hopperInput) && board_.GetLastError() == usbErrorNotSupported)
            board_.ClearErrors();
    }
    HopperStop(const HopperStop &) = delete;
    HopperStop &operator=(const HopperStop &) = delete;

private:
    SorvaneUSB &board_;
};

bool countCoins(SorvaneUSB &board)
{
    if (!succeeded(board.ConfigurePulsedInput(coinInput, 10, activeHigh), board, "ConfigurePulsedInput") ||
        !succeeded(board.ResetPulsedInputCounter(coinInput), board, "ResetPulsedInputCounter") ||
        !succeeded(board.BeginPulsedInputCheck(coinInput), board, "BeginPulsedInputCheck"))
        return false;
    std::printf("Waiting half a second for coins on input %u\n", static_cast<unsigned int>(coinInput));
    unsigned int credit = 0;
    for (int look = 0; look < 5; ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        unsigned char counter = 0;
        if (!succeeded(board.ReadPulsedInputCounter(coinInput, &counter), board, "ReadPulsedInputCounter"))
            return false;
        // Each counted coin is taken off the counter one by one, so that none is lost and none counts twice.
        for (; counter > 0; --counter, ++credit)
            if (!succeeded(board.DecrementPulsedInputCounter(coinInput), board, "DecrementPulsedInputCounter"))
                return false;
    }
    std::printf("Counted %u coins\n", credit);
    return succeeded(board.EndPulsedInputCheck(coinInput), board, "EndPulsedInputCheck");
}

bool payOut(SorvaneUSB &board)
{
    unsigned char before = 0;
    ReleaseHopperCoinsStatus status;
    if (!succeeded(board.GetParallelHopperStatus(hopperInput, &status, &before), board, "GetParallelHopperStatus"))
        return false;
    HopperStop stop(board);
    if (!succeeded(board.ReleaseParallelHopperCoins(hopperInput, 10, activeHigh, hopperDrive, coinsToPay, 0), board,
                   "ReleaseParallelHopperCoins"))
        return false;
    std::printf("Asked the hopper for %d coins\n", coinsToPay);
    unsigned char paid = 0;
    for (int look = 0; look < 80; ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        if (!succeeded(board.GetParallelHopperStatus(hopperInput, &status, &paid), board, "GetParallelHopperStatus"))
            return false;
        if (status != usbHopperActive)
            break;
    }
    if (status == usbHopperActive)
        std::printf("The hopper is still running after its time: stopping it\n");
    if (paid < coinsToPay)
        std::printf("Only %d of %d coins came: the hopper is empty or jammed, %d are owed\n", paid, coinsToPay,
                    coinsToPay - paid);
    else
        std::printf("All %d coins came\n", paid);
    return true;
}

}  // namespace

int main()
{
    SorvaneUSB board;
    if (!succeeded(board.init(0), board, "Opening the first board"))
        return 1;
    return countCoins(board) && payOut(board) ? 0 : 1;
}
