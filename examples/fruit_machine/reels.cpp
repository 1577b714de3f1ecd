#include "reels.h"

#include <thread>

namespace fruit_machine
{

namespace
{

// As the virtual boards understand them: a ramp entry is milliseconds a step, the last one of the ramp up holds for the
// steps between the ramps. Of the status the first value is the count of steps, the second the steps to go, bit 0 of
// the fourth that the index was found.
constexpr unsigned char spinForward = 1;
constexpr unsigned char spinDown = 0;
constexpr unsigned char allReels = 7;
constexpr unsigned char foundIndex = 1;
constexpr unsigned char slowest = 12;
constexpr unsigned char fastest = 2;
constexpr unsigned char rampEntries = 20;
constexpr unsigned char dutyCycle = 50;
constexpr auto longestSpin = std::chrono::seconds(5);

}  // namespace

ReelStatusEx Reels::status()
{
    ReelStatusEx status = {};
    must(board_.GetReelStatusEx(&status), board_, "GetReelStatusEx");
    return status;
}

void Reels::loadRamps(unsigned char reel)
{
    usbRampTable up = {};
    usbRampTable down = {};
    up.entryCount = down.entryCount = rampEntries;
    for (unsigned int k = 0; k < rampEntries; ++k) {
        up.entries[k] = static_cast<unsigned char>(slowest - (slowest - fastest) * k / (rampEntries - 1));
        down.entries[rampEntries - 1 - k] = up.entries[k];
    }
    must(board_.SpinRampUp(reel, up), board_, "SpinRampUp");
    must(board_.SpinRampDown(reel, down), board_, "SpinRampDown");
}

// A drive that lost its power knows no reel that it could stop before it is configured.
void Reels::begin()
{
    must(board_.ConfigureReelsEx(reelCount, stepsPerTurn, 0), board_, "ConfigureReelsEx");
    stop();
    waitUntilStill();
    must(board_.SetDutyCycle(dutyCycle, dutyCycle, dutyCycle), board_, "SetDutyCycle");
    must(board_.ReelSynchroniseEnable(allReels), board_, "ReelSynchroniseEnable");
    for (unsigned char reel = 0; reel < reelCount; ++reel)
        loadRamps(reel);
}

bool Reels::synchronised()
{
    const ReelStatusEx now = status();
    return (now.fourth[0] & now.fourth[1] & now.fourth[2] & foundIndex) != 0;
}

void Reels::synchronise()
{
    for (unsigned char reel = 0; reel < reelCount; ++reel)
        must(board_.SpinReels(reel, spinForward, stepsPerTurn), board_, "SpinReels");
    waitUntilStill();
    if (!synchronised())
        throw BoardLost("a reel does not find its index mark");
}

void Reels::spin(const Stops &to, const Held &held)
{
    const ReelStatusEx now = status();
    for (unsigned char reel = 0; reel < reelCount; ++reel) {
        if (held[reel])
            continue;
        const unsigned int onward = (to[reel] * stepsPerStop + stepsPerTurn - now.first[reel] % stepsPerTurn);
        const unsigned int steps = (1U + reel) * stepsPerTurn + onward % stepsPerTurn;
        must(board_.SpinReels(reel, spinForward, static_cast<unsigned short>(steps)), board_, "SpinReels");
    }
    due_ = std::chrono::steady_clock::now() + longestSpin;
}

bool Reels::still()
{
    const ReelStatusEx now = status();
    return now.second[0] == 0 && now.second[1] == 0 && now.second[2] == 0;
}

bool Reels::standsAt(unsigned int reel, unsigned int stop)
{
    return status().first[reel] % stepsPerTurn == stop * stepsPerStop;
}

void Reels::stop()
{
    for (unsigned char reel = 0; reel < reelCount; ++reel)
        must(board_.SpinReels(reel, spinDown, 0), board_, "SpinReels");
}

void Reels::waitUntilStill()
{
    const auto end = std::chrono::steady_clock::now() + longestSpin;
    while (!still()) {
        if (std::chrono::steady_clock::now() > end)
            throw BoardLost("a reel does not come to rest");
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

}  // namespace fruit_machine
