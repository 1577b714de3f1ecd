// The game: what the machine does with money, presses and the door.
//
//     attract -- coin --> credit -- start --> spinning -- no win --> credit, or attract without credit
//                                             spinning -- win --> win --> paying --> credit or attract
//                         credit -- collect --> paying
//
// From everywhere, an open door stops play until it is shut. A hopper that pays too little or a reel that stands wrong
// puts the machine out of order until somebody has opened and shut the door. Whatever was not paid stays as credit.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_GAME_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_GAME_H

#include "buttons.h"
#include "hopper.h"
#include "lamps.h"
#include "outcomes.h"
#include "reels.h"
#include "till.h"

#include <chrono>
#include <string>

namespace fruit_machine
{

class Game
{
public:
    /// `wins` as for Outcomes.
    explicit Game(std::vector<unsigned int> wins);

    /// Opens the board and takes up where the EEPROM says that the machine was, also after a power cut or a crash.
    void open();
    /// Lets go of the board.
    void close();
    /// One look at everything; to be called every few hundredths of a second.
    void tick();
    /// Leaves the machine safe: hopper and reels stopped, lamps off, the credit in the EEPROM.
    void end();

private:
    enum class State { Attract, Credit, Spinning, Win, Paying, OutOfOrder, DoorOpen };

    void enter(State state);
    void enterIdle();
    Light holdLight(unsigned int reel) const;
    void lightHolds();

    void idle(const Presses &presses);
    void hold(unsigned int reel);
    void play();
    void spinning();
    void creditWin();
    void stopped();
    void pay(unsigned int coins);
    void paying();
    void putOutOfOrder(const std::string &reason);
    bool doorIsShut();
    void openDoor();

    std::uint32_t credit() const { return ledger_.now().credit; }

    SorvaneUSB board_;
    Ledger ledger_;
    Till till_;
    Buttons buttons_;
    Lamps lamps_;
    Reels reels_;
    Hopper hopper_;
    Outcomes outcomes_;

    State state_ = State::Attract;
    Stops stops_{};
    Held held_{};
    bool holdsOffered_ = false;
    std::uint32_t win_ = 0;                             // of the last game
    std::uint32_t coinsAsked_ = 0;                      // of the hopper, for this payout
    std::uint32_t paidBefore_ = 0;                      // the meter when it began
    std::uint32_t paidLastTick_ = 0;                    // and at the last look
    std::chrono::steady_clock::time_point deadline_{};  // of the state, where it has one
};

}  // namespace fruit_machine

#endif
