// The player's buttons. The board counts the presses, so that a short one between two looks is not missed.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_BUTTONS_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_BUTTONS_H

#include "pulse_counter.h"

#include <array>

namespace fruit_machine
{

/// Which buttons were pressed since the last look.
struct Presses {
    bool start = false;
    bool collect = false;
    std::array<bool, reelCount> hold{};
};

class Buttons
{
public:
    explicit Buttons(SorvaneUSB &board)
        : buttons_{{{board, startButton}, 0},
                   {{board, collectButton}, 0},
                   {{board, holdButtons[0]}, 0},
                   {{board, holdButtons[1]}, 0},
                   {{board, holdButtons[2]}, 0}}
    {
    }

    /// Presses from before do not count.
    void begin()
    {
        for (Button &button : buttons_) {
            button.counter.begin();
            button.seen = button.counter.read();
        }
    }

    Presses read()
    {
        Presses presses;
        presses.start = buttons_[0].pressed();
        presses.collect = buttons_[1].pressed();
        for (unsigned int reel = 0; reel < reelCount; ++reel)
            presses.hold[reel] = buttons_[2 + reel].pressed();
        return presses;
    }

private:
    struct Button {
        PulseCounter counter;
        unsigned char seen;
        bool pressed() { return counter.since(seen) > 0; }
    };

    Button buttons_[2 + reelCount];
};

}  // namespace fruit_machine

#endif
