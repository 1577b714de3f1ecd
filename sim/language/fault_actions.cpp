// What commands let go wrong with the next exchanges.
#include "sim/language/actions.h"

#include <cerrno>

namespace sim
{

namespace
{

void add(VirtualBoard &board, Fault fault, const Reading &reading)
{
    fault.on(static_cast<unsigned char>(reading.numberOr("request", 0))).times(reading.numberOr("count", 1));
    board.faults().add(fault);
}

}  // namespace

void checkErrno(const Reading &reading)
{
    if (reading.numberOr("ERRNO", EIO) == ENOSYS)
        throw UsageError("38 reaches no program, the kernel turns it into 25; allowed are the others from 1 to 133");
}

void failIoctl(VirtualBoard &board, const Reading &reading)
{
    add(board, Fault::ioctlFails(static_cast<int>(reading.numberOr("ERRNO", EIO))), reading);
}

void failStatus(VirtualBoard &board, const Reading &reading)
{
    const unsigned int status = reading["STATUS"].number;
    if (board.model() == Model::R20 && status > 0xFF)
        throw UsageError("an R20 has statuses of one byte: allowed are 1 to 255");
    add(board, Fault::status(status), reading);
}

// Of an R20's answer the driver delivers the echo and the status with the bytes.
void failShort(VirtualBoard &board, const Reading &reading)
{
    const bool isR20 = board.model() == Model::R20;
    const unsigned int count = reading.numberOr("BYTES", isR20 ? 1 : 0);
    if (isR20 && count < 2)
        add(board, Fault::packetCount(count), reading);
    else
        add(board, Fault::shortAnswer(isR20 ? count - 2 : count), reading);
}

// No board understands request 0, so it is never the right one.
void failEcho(VirtualBoard &board, const Reading &reading)
{
    if (board.model() != Model::R20)
        throw UsageError("only an R20 echoes; allowed on this board: ioctl, status, short");
    add(board, Fault::echo(static_cast<unsigned char>(reading.numberOr("CODE", 0))), reading);
}

void dropFaults(VirtualBoard &board, const Reading &)
{
    board.faults().clear();
}

void slowDown(VirtualBoard &board, const Reading &reading)
{
    board.faults().removeDelays();
    const Nanoseconds delay = reading["TIME"].time;
    if (delay == Nanoseconds::zero())
        return;
    Fault fault = Fault::slow(delay);
    board.faults().add(reading.has("count") ? fault.times(reading["count"].number) : fault.forever());
}

}  // namespace sim
