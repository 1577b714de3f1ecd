// The hopper. The board runs it by itself and goes on when the program ends: whoever starts it also stops it.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_HOPPER_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_HOPPER_H

#include "board_access.h"
#include "wiring.h"

#include <cstdint>

namespace fruit_machine
{

class Hopper
{
public:
    /// As many as one request can name.
    static constexpr std::uint32_t mostCoins = 65535;

    explicit Hopper(SorvaneUSB &board) : board_(board) {}

    /// Asks for coins, at most `mostCoins`. They are counted by the till, not here.
    void release(std::uint32_t coins)
    {
        const auto count = static_cast<unsigned short>(coins);
        must(board_.ReleaseParallelHopperCoinsEx(hopperSensor, inputSetting, 0, activeHigh, hopperMotor, count, 0),
             board_, "ReleaseParallelHopperCoinsEx");
    }

    bool paying()
    {
        ReleaseHopperCoinsStatus status{};
        unsigned char unused = 0;
        must(board_.GetParallelHopperStatus(hopperSensor, &status, &unused), board_, "GetParallelHopperStatus");
        return status == usbHopperActive;
    }

    void stop() { must(board_.StopHopperCoinRelease(hopperSensor), board_, "StopHopperCoinRelease"); }

private:
    SorvaneUSB &board_;
};

}  // namespace fruit_machine

#endif
