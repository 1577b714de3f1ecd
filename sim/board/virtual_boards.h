// The 16 device numbers of a machine and the boards behind them.
#ifndef SORVANE_SIM_BOARD_VIRTUAL_BOARDS_H
#define SORVANE_SIM_BOARD_VIRTUAL_BOARDS_H

#include "sim/board/virtual_board.h"

namespace sim
{

constexpr int deviceCount = 16;

/// Safe from several threads; what is done with a board itself needs the board's lock.
class VirtualBoards
{
public:
    explicit VirtualBoards(Clock &clock) : clock_(&clock) {}

    /// The clock of the boards that are plugged from now on; it outlives them.
    void useClock(Clock &clock);
    Clock &clock() const;

    /// A new board behind this number, in place of the one that was there. A number outside 0 to 15 throws
    /// std::out_of_range.
    VirtualBoard &plug(int deviceNo, Model model);

    /// Null when nothing was ever plugged there or it was removed; a board that is unplugged is found.
    VirtualBoard *find(int deviceNo) const { return hold(deviceNo).get(); }
    /// The same, and it stays alive as long as it is held, also when it is removed meanwhile.
    std::shared_ptr<VirtualBoard> hold(int deviceNo) const;

    /// Unplugs the board for good.
    void remove(int deviceNo);
    void clear();

    /// The texts of a plugged board's attributes, "Sorvane R20s Board\n" and "12\n" or "480\n"; nothing without one.
    std::optional<std::string> productText(int deviceNo) const;
    std::optional<std::string> speedText(int deviceNo) const;

    /// Rings whenever something has happened on one of the boards, or the next thing to happen has changed.
    Bell &bell() { return *bell_; }

private:
    std::shared_ptr<VirtualBoard> exchangeBoard(int deviceNo, std::shared_ptr<VirtualBoard> board);

    mutable std::mutex mutex_;
    Clock *clock_;
    std::shared_ptr<Bell> bell_ = std::make_shared<Bell>();
    std::array<std::shared_ptr<VirtualBoard>, deviceCount> boards_;
};

}  // namespace sim

#endif
