#include "sim/inprocess/inprocess.h"

namespace sim
{

// Neither is ever destroyed: programs drive boards from their first constructor to their last destructor.
VirtualBoards &inProcessBoards()
{
    static auto &clock = *new SteadyClock;
    static auto &boards = *new VirtualBoards(clock);
    return boards;
}

}  // namespace sim
