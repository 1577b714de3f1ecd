// Three reels: configures the drive, loads ramps, spins, and waits for each to stop.
//
// What the settings, the ramp entries and the status values mean is the firmware's. This program takes the meanings of
// the virtual boards (docs/virtual_values.md) and keeps them in one place: a ramp entry is the time of a step in
// milliseconds; `first` counts steps, and only on a reel that is synchronised and has passed its index since does it
// say where the reel stands; `second` is the steps to go.
#include "report.h"

#include <chrono>
#include <cstdio>
#include <thread>

namespace
{

constexpr unsigned short stepsPerTurn = 200;
constexpr unsigned char spinForward = 1;
constexpr unsigned char stopNow = 0;
constexpr unsigned char everyReel = 0x07;     // a bit a reel
constexpr unsigned char synchronised = 0x01;  // in `fourth`

usbRampTable ramp(unsigned char from, unsigned char to)
{
    usbRampTable table = {};
    table.entryCount = 20;
    for (int k = 0; k < table.entryCount; ++k)
        table.entries[k] = static_cast<unsigned char>(from + (to - from) * k / (table.entryCount - 1));
    return table;
}

bool spin(SorvaneUSB &board)
{
    for (unsigned char reel = 0; reel < 3; ++reel) {
        if (!succeeded(board.SpinRampUp(reel, ramp(12, 4)), board, "SpinRampUp") ||
            !succeeded(board.SpinRampDown(reel, ramp(4, 12)), board, "SpinRampDown"))
            return false;
        // More than a turn, so that each passes its index on the way.
        const unsigned short steps = static_cast<unsigned short>(stepsPerTurn + 80 + 20 * reel);
        std::printf("Reel %d spins %d steps\n", reel, steps);
        if (!succeeded(board.SpinReels(reel, spinForward, steps), board, "SpinReels"))
            return false;
    }
    return true;
}

void tellPlaces(const ReelStatusEx &status)
{
    for (int reel = 0; reel < 3; ++reel) {
        if (status.fourth[reel] & synchronised)
            std::printf("Reel %d stands %d steps behind its index\n", reel, status.first[reel] % stepsPerTurn);
        else
            std::printf("Reel %d stands somewhere: it has not passed its index\n", reel);
    }
}

bool waitForStop(SorvaneUSB &board)
{
    ReelStatusEx status = {};
    for (int look = 0; look < 200; ++look) {
        if (!succeeded(board.GetReelStatusEx(&status), board, "GetReelStatusEx"))
            return false;
        if (status.second[0] == 0 && status.second[1] == 0 && status.second[2] == 0) {
            tellPlaces(status);
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    std::printf("A reel does not stop: switching the drive off\n");
    bool stopped = true;
    for (unsigned char reel = 0; reel < 3; ++reel)
        stopped = succeeded(board.SpinReels(reel, stopNow, 0), board, "SpinReels") && stopped;
    return stopped;
}

}  // namespace

int main()
{
    SorvaneUSB board;
    if (!succeeded(board.init(0), board, "Opening the first board") ||
        !succeeded(board.ConfigureReelsEx(3, stepsPerTurn, 0), board, "ConfigureReelsEx") ||
        !succeeded(board.SetDutyCycle(50, 50, 50), board, "SetDutyCycle") ||
        !succeeded(board.ReelSynchroniseEnable(everyReel), board, "ReelSynchroniseEnable"))
        return 1;
    return spin(board) && waitForStop(board) ? 0 : 1;
}
