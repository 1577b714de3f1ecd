#include "sim/board/reels.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr unsigned char modeStop = 0;
constexpr unsigned char modeForward = 1;
constexpr unsigned char modeForwardEndless = 2;
constexpr unsigned char modeBackwardEndless = 254;
constexpr unsigned int untilStopped = 0xFFFF;

}  // namespace

void Reels::runUntilNow()
{
    for (Reel &reel : reels_)
        reel.runUntil(timeline_.now());
}

const Reel &Reels::at(unsigned int reel)
{
    timeline_.settle();
    runUntilNow();
    return reels_.at(reel);
}

// So that whoever watches the board sees a reel still at the time at which it becomes so.
void Reels::expectRest()
{
    timeline_.cancel(this);
    for (const Reel &reel : reels_) {
        if (reel.motion() != Reel::Motion::Still && !reel.endless())
            timeline_.at(reel.restsAt(), this, [] {});
    }
}

std::array<bool, 3> Reels::turning()
{
    runUntilNow();
    std::array<bool, 3> turning{};
    std::transform(reels_.begin(), reels_.end(), turning.begin(),
                   [](const Reel &reel) { return reel.motion() != Reel::Motion::Still; });
    return turning;
}

void Reels::configure(Payload payload)
{
    configured_ = payload[0];
    option_ = payload[3];
    for (Reel &reel : reels_)
        reel.setStepsPerTurn(u16be(payload, 1));
    for (std::size_t i = configured_; i < reels_.size(); ++i)
        reels_[i].stop();
    expectRest();
}

Reply Reels::spin(Payload payload)
{
    const unsigned char mode = payload[1];
    const unsigned int steps = u16be(payload, 2);
    const bool endless = mode == modeForwardEndless || mode == modeBackwardEndless;
    if (payload[0] >= reels_.size() || (mode > modeForwardEndless && mode < modeBackwardEndless))
        return refuse(statusWrongValue);
    if (payload[0] >= configured_)
        return refuse(statusNotConfigured);
    return perform([this, &reel = reels_[payload[0]], mode, steps, endless] {
        if (mode == modeStop)
            reel.stop();
        else if (endless || steps > 0)
            reel.spin(mode == modeForward || mode == modeForwardEndless, endless ? 0 : steps, timeline_.now());
        expectRest();
    });
}

Reply Reels::ramp(bool up, Payload payload)
{
    if (payload[0] >= reels_.size())
        return refuse(statusWrongValue);
    if (payload[1] != payload.size() - 2)
        return refuse(statusWrongLength);
    return perform([&reel = reels_[payload[0]], up, entries = toBytes(payload.subspan(2))] {
        if (up)
            reel.setRampUp(entries);
        else
            reel.setRampDown(entries);
    });
}

Bytes Reels::status()
{
    Bytes bytes;
    for (unsigned int i = 0; i < reels_.size(); ++i) {
        const Reel &reel = at(i);
        const unsigned int left = reel.endless() ? untilStopped : reel.stepsLeft();
        const bool turning = reel.motion() != Reel::Motion::Still;
        const unsigned int flags =
            (reel.synchronised() ? 1U : 0U) | (reel.place() == 0 ? 2U : 0U) | (turning && !reel.forward() ? 0x80U : 0U);
        for (const unsigned char byte : {highByte(reel.count()), lowByte(reel.count()), highByte(left), lowByte(left),
                                         static_cast<unsigned char>(reel.motion()), lowByte(flags)})
            bytes.push_back(byte);
    }
    return bytes;
}

std::optional<Reply> Reels::answer(Request request, Payload payload)
{
    runUntilNow();
    switch (request) {
    case Request::ConfigureReels:
        if (payload[0] > reels_.size())
            return refuse(statusWrongValue);
        return perform([this, payload] { configure(payload); });
    case Request::SpinReels:
        return spin(payload);
    case Request::SpinRampUp:
    case Request::SpinRampDown:
        return ramp(request == Request::SpinRampUp, payload);
    case Request::SetDutyCycle:
        return perform([] {});  // nothing that can be seen follows from it
    case Request::ReelSynchroniseEnable:
        return perform([this, mask = payload[0]] {
            for (unsigned int i = 0; i < reels_.size(); ++i)
                reels_[i].setSynchronising((mask >> i & 1) != 0);
        });
    case Request::GetReelStatus:
        return tell(status());
    default:
        return std::nullopt;
    }
}

// A reel stays where it stopped; the drive has forgotten everything.
void Reels::powerLost()
{
    timeline_.cancel(this);
    runUntilNow();
    for (Reel &reel : reels_)
        reel = Reel(reel.place());
    configured_ = 0;
    option_ = 0;
}

}  // namespace sim
