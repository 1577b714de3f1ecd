#include "sim/board/virtual_boards.h"

#include <stdexcept>

namespace sim
{

namespace
{

bool isDevice(int deviceNo)
{
    return deviceNo >= 0 && deviceNo < deviceCount;
}

void pullOff(const std::shared_ptr<VirtualBoard> &board)
{
    if (!board)
        return;
    const auto lock = board->lock();
    board->unplug();
}

}  // namespace

void VirtualBoards::useClock(Clock &clock)
{
    const std::lock_guard lock(mutex_);
    clock_ = &clock;
}

Clock &VirtualBoards::clock() const
{
    const std::lock_guard lock(mutex_);
    return *clock_;
}

VirtualBoard &VirtualBoards::plug(int deviceNo, Model model)
{
    if (!isDevice(deviceNo))
        throw std::out_of_range("device number");
    const auto board = std::make_shared<VirtualBoard>(model, clock());
    board->tell(deviceNo, bell_);
    pullOff(exchangeBoard(deviceNo, board));
    return *board;
}

std::shared_ptr<VirtualBoard> VirtualBoards::exchangeBoard(int deviceNo, std::shared_ptr<VirtualBoard> board)
{
    const std::lock_guard lock(mutex_);
    boards_[static_cast<std::size_t>(deviceNo)].swap(board);
    return board;
}

std::shared_ptr<VirtualBoard> VirtualBoards::hold(int deviceNo) const
{
    if (!isDevice(deviceNo))
        return nullptr;
    const std::lock_guard lock(mutex_);
    return boards_[static_cast<std::size_t>(deviceNo)];
}

void VirtualBoards::remove(int deviceNo)
{
    if (isDevice(deviceNo))
        pullOff(exchangeBoard(deviceNo, nullptr));
}

void VirtualBoards::clear()
{
    for (int deviceNo = 0; deviceNo < deviceCount; ++deviceNo)
        remove(deviceNo);
}

std::optional<std::string> VirtualBoards::productText(int deviceNo) const
{
    const std::shared_ptr<VirtualBoard> board = hold(deviceNo);
    if (!board)
        return std::nullopt;
    const auto lock = board->lock();
    if (!board->plugged())
        return std::nullopt;
    return std::string("Sorvane ") + nameOf(board->model()) + " Board\n";
}

std::optional<std::string> VirtualBoards::speedText(int deviceNo) const
{
    const std::shared_ptr<VirtualBoard> board = hold(deviceNo);
    if (!board)
        return std::nullopt;
    const auto lock = board->lock();
    if (!board->plugged())
        return std::nullopt;
    return board->isHighSpeed() ? "480\n" : "12\n";
}

}  // namespace sim
