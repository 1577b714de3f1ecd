// How a board writes down what happens on it.
#include "sim/board/virtual_board.h"

#include <cstdlib>

namespace sim
{

Snapshot VirtualBoard::snapshot()
{
    Snapshot now;
    now.plugged = plugged_;
    now.firmwareRunning = firmware_.running();
    now.inputs = inputs_.levels();
    for (unsigned int input = 0; input < counterCount; ++input)
        now.counters[input] = pulsedInputs_.counter(input).count;
    for (const auto &[input, hopper] : hoppers_.all()) {
        now.hoppers[input].stock = hopper.stock();
        now.hoppers[input].jammed = hopper.jammed();
    }
    for (const auto &[input, release] : hoppers_.releases()) {
        now.hoppers[input].paid = release.paid;
        now.hoppers[input].paying = release.status == hopperActive;
    }
    now.onPattern = outputs_.onPattern();
    now.offPattern = outputs_.offPattern();
    now.driven = outputs_.driven();
    now.pulsedOn = outputs_.pulsedOn();
    now.pulsedOff = outputs_.pulsedOff();
    now.turning = reels_.turning();
    return now;
}

void VirtualBoard::noteChanges()
{
    const Snapshot now = snapshot();
    if (now == lastSnapshot_)
        return;
    sim::noteChanges(diary_, lastSnapshot_, now);
    lastSnapshot_ = now;
}

void VirtualBoard::noteExchange(const PendingExchange &pending)
{
    const Exchange &exchange = pending.exchange;
    journal::Event &event = diary_.note(journal::Kind::Exchange);
    event.model = static_cast<protocol::Model>(model_);
    event.request = exchange.request;
    event.pipe = static_cast<unsigned char>(exchange.pipe);
    assign(event.before, exchange.sent);
    if (pending.ioctlResult != 0) {
        event.outcome = protocol::Outcome::Failed;
        event.status = std::abs(pending.ioctlResult);
        return;
    }
    event.outcome = exchange.status == 0 ? protocol::Outcome::Success : protocol::Outcome::Refused;
    event.status = exchange.status;
    assign(event.bytes, exchange.received);
}

Nanoseconds VirtualBoard::takeDelay(unsigned char request, int pipe)
{
    const Nanoseconds delay = faults_.takeDelay(request, pipe);
    if (delay > Nanoseconds::zero()) {
        timeline_.settle();
        diary_.note(journal::Kind::Fault).bytes = textOf(Fault::slow(delay));
    }
    return delay;
}

const journal::Ring &VirtualBoard::events()
{
    timeline_.settle();
    return diary_.events();
}

void VirtualBoard::tell(int deviceNo, std::shared_ptr<Bell> bell)
{
    diary_.setDevice(deviceNo);
    bell_ = std::move(bell);
}

void VirtualBoard::settle()
{
    timeline_.settle();
    if (!bell_ || (toldOf_ == diary_.events().last() && toldWhatsNext_ == timeline_.nextDue()))
        return;
    toldOf_ = diary_.events().last();
    toldWhatsNext_ = timeline_.nextDue();
    bell_->ring();
}

}  // namespace sim
