#include "game.h"

#include <algorithm>
#include <cstdio>

namespace fruit_machine
{

namespace
{

using std::chrono::steady_clock;

constexpr auto winShown = std::chrono::seconds(1);
// The board gives up earlier by itself; this is for one that does not.
constexpr auto longestWaitForCoin = std::chrono::seconds(5);
constexpr int mostHeld = 2;

}  // namespace

Game::Game(std::vector<unsigned int> wins)
    : ledger_(board_), till_(board_, ledger_), buttons_(board_), lamps_(board_), reels_(board_), hopper_(board_),
      outcomes_(board_, std::move(wins))
{
}

// What may still move is stopped first. A board that lost its power forgot its counters; they are taken for 0 before
// the reels find their marks, which makes the board count as one that kept its power, and begin to count after that.
void Game::open()
{
    // A board that is not there leaves no code: none from before shall be taken for the reason.
    board_.ClearErrors();
    must(board_.InitPort(deviceNumber), board_, "Opening the board");
    hopper_.stop();
    lamps_.allOff();
    must(board_.ConfigureEEPROM(&eepromChip), board_, "ConfigureEEPROM");
    if (!ledger_.load())
        std::printf("new EEPROM\n");
    reels_.begin();
    if (!reels_.synchronised()) {
        till_.forgetReadings();
        reels_.synchronise();
    }
    till_.begin();
    buttons_.begin();
    outcomes_.begin();
    held_ = {};
    holdsOffered_ = false;
    till_.count();
    creditWin();
    const Accounts &now = ledger_.now();
    std::printf("ready credit %u total_in %u total_out %u games %u\n", now.credit, now.totalIn, now.totalOut,
                now.games);
    if (doorIsShut())
        enterIdle();
    else
        openDoor();
}

void Game::close()
{
    board_.close();
}

// The presses are read before the coins: whoever presses has inserted the coin for it already.
void Game::tick()
{
    const Presses presses = buttons_.read();
    till_.count();
    const bool shut = doorIsShut();
    if (!shut && state_ != State::DoorOpen) {
        openDoor();
        return;
    }
    switch (state_) {
    case State::Attract:
    case State::Credit:
        idle(presses);
        break;
    case State::Spinning:
        spinning();
        break;
    case State::Win:
        if (steady_clock::now() >= deadline_)
            pay(win_);
        break;
    case State::Paying:
        paying();
        break;
    case State::OutOfOrder:
        break;
    case State::DoorOpen:
        if (shut && reels_.still()) {
            std::printf("door shut\n");
            enterIdle();
        }
        break;
    }
}

void Game::end()
{
    hopper_.stop();
    reels_.stop();
    lamps_.allOff();
    till_.count();
    std::printf("end credit %u\n", credit());
}

void Game::enter(State state)
{
    static const char *const names[] = {"attract", "credit", "spinning", "win", "paying", "out of order", "door open"};
    state_ = state;
    std::printf("state %s\n", names[static_cast<int>(state)]);
    lamps_.set(startLamp, state == State::Attract ? Light::Flashing : state == State::Credit ? Light::On : Light::Off);
    lamps_.set(collectLamp, state == State::Credit ? Light::On : state == State::Paying ? Light::Flashing : Light::Off);
    lamps_.set(winLamp, state == State::Win ? Light::Flashing : Light::Off);
    lightHolds();
}

void Game::enterIdle()
{
    enter(credit() >= stake ? State::Credit : State::Attract);
}

// All three flashing while nothing else is lit tells that the machine is out of order.
Light Game::holdLight(unsigned int reel) const
{
    if (state_ == State::OutOfOrder)
        return Light::Flashing;
    if (state_ != State::Credit && state_ != State::Spinning)
        return Light::Off;
    if (held_[reel])
        return Light::On;
    return state_ == State::Credit && holdsOffered_ ? Light::Flashing : Light::Off;
}

void Game::lightHolds()
{
    for (unsigned int reel = 0; reel < reelCount; ++reel)
        lamps_.set(holdLamps[reel], holdLight(reel));
}

void Game::idle(const Presses &presses)
{
    const bool canPlay = credit() >= stake;
    if (canPlay != (state_ == State::Credit))
        enterIdle();
    if (!canPlay)
        return;
    for (unsigned int reel = 0; reel < reelCount; ++reel)
        if (presses.hold[reel] && holdsOffered_)
            hold(reel);
    if (presses.start)
        play();
    else if (presses.collect)
        pay(credit());
}

void Game::hold(unsigned int reel)
{
    if (!held_[reel] && std::count(held_.begin(), held_.end(), true) >= mostHeld)
        return;
    held_[reel] = !held_[reel];
    std::printf("hold %s %s\n", reelNames[reel], held_[reel] ? "on" : "off");
    lightHolds();
}

// The outcome is entered together with the stake: a game that a power cut ends is paid when the power is back.
void Game::play()
{
    stops_ = outcomes_.next(stops_, held_);
    win_ = winOf(stops_);
    Accounts next = ledger_.now();
    next.credit -= stake;
    ++next.games;
    next.openWin = win_;
    ledger_.commit(next);
    std::printf("game %u credit %u\n", next.games, next.credit);
    reels_.spin(stops_, held_);
    enter(State::Spinning);
}

void Game::spinning()
{
    if (reels_.still())
        stopped();
    else if (reels_.overdue()) {
        reels_.stop();
        creditWin();
        putOutOfOrder("a reel does not stop");
    }
}

void Game::creditWin()
{
    Accounts next = ledger_.now();
    if (next.openWin == 0)
        return;
    const std::uint32_t win = next.openWin;
    next.credit += win;
    next.openWin = 0;
    ledger_.commit(next);
    std::printf("win %u credit %u\n", win, next.credit);
}

// Holds are offered after a game that was lost without any.
void Game::stopped()
{
    std::printf("reels %s %s %s\n", symbolAt(0, stops_[0]), symbolAt(1, stops_[1]), symbolAt(2, stops_[2]));
    creditWin();
    holdsOffered_ = win_ == 0 && held_ == Held{};
    held_ = {};
    for (unsigned int reel = 0; reel < reelCount; ++reel) {
        if (reels_.standsAt(reel, stops_[reel]))
            continue;
        putOutOfOrder(std::string("the ") + reelNames[reel] + " reel stands wrong");
        return;
    }
    if (win_ == 0) {
        std::printf("no win credit %u\n", credit());
        enterIdle();
        return;
    }
    deadline_ = steady_clock::now() + winShown;
    enter(State::Win);
}

// The lamps come first: none may be set to flash while the hopper pays.
void Game::pay(unsigned int coins)
{
    std::printf("pay %u\n", coins);
    coinsAsked_ = std::min(coins, Hopper::mostCoins);
    paidBefore_ = paidLastTick_ = ledger_.now().totalOut;
    deadline_ = steady_clock::now() + longestWaitForCoin;
    enter(State::Paying);
    hopper_.release(coinsAsked_);
}

// The last coins are counted after the hopper was seen to have ended, lest one is missed between the two looks.
void Game::paying()
{
    const std::uint32_t paidNow = ledger_.now().totalOut;
    if (paidNow != paidLastTick_)
        deadline_ = steady_clock::now() + longestWaitForCoin;
    paidLastTick_ = paidNow;
    if (hopper_.paying()) {
        if (steady_clock::now() < deadline_)
            return;
        hopper_.stop();
    }
    till_.count();
    const std::uint32_t paid = ledger_.now().totalOut - paidBefore_;
    std::printf("paid %u of %u credit %u\n", paid, coinsAsked_, credit());
    if (paid == coinsAsked_)
        enterIdle();
    else
        putOutOfOrder("the hopper paid " + std::to_string(paid) + " of " + std::to_string(coinsAsked_));
}

void Game::putOutOfOrder(const std::string &reason)
{
    std::printf("out of order: %s, credit %u\n", reason.c_str(), credit());
    held_ = {};
    holdsOffered_ = false;
    enter(State::OutOfOrder);
}

bool Game::doorIsShut()
{
    unsigned int shut = 0;
    must(board_.GetInputBit(doorShut, &shut), board_, "GetInputBit");
    return shut != 0;
}

// Nothing may move while somebody's hands are in the machine.
void Game::openDoor()
{
    hopper_.stop();
    reels_.stop();
    std::printf("door open\n");
    creditWin();
    held_ = {};
    holdsOffered_ = false;
    enter(State::DoorOpen);
}

}  // namespace fruit_machine
