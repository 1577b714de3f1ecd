#include "sim/board/hoppers.h"

#include <algorithm>

namespace sim
{

Hoppers::Hoppers(Timeline &timeline, Inputs &inputs, Outputs &outputs)
    : timeline_(timeline), inputs_(inputs), outputs_(outputs)
{
    inputs.listen([this](unsigned int input, bool level) { changed(input, level); });
    outputs.listen([this](const Pattern &switchedOff) { outputsChanged(switchedOff); });
}

Hopper &Hoppers::at(unsigned int input)
{
    const auto [found, isNew] =
        hoppers_.try_emplace(input, timeline_,
                             HopperWiring{[this](unsigned int output) { return outputs_.lit(output); },
                                          [this](unsigned int output) { return outputs_.litOrFlashing(output); },
                                          [this, input] { inputs_.pulse(input); }});
    if (const auto release = releases_.find(input); isNew && release != releases_.end())
        found->second.releasedBy(release->second.output);
    return found->second;
}

Hoppers::Release Hoppers::release(unsigned int input) const
{
    const auto found = releases_.find(input);
    return found == releases_.end() ? Release{} : found->second;
}

void Hoppers::start(unsigned int input, const Release &release)
{
    releases_[input] = release;
    if (release.asked == 0) {
        releases_[input].status = hopperPaid;
        return;
    }
    if (const auto hopper = hoppers_.find(input); hopper != hoppers_.end())
        hopper->second.releasedBy(release.output);
    outputs_.drive(release.output, true);
    expectCoin(input);
}

void Hoppers::end(unsigned int input, unsigned char status)
{
    Release &release = releases_[input];
    release.status = status;
    outputs_.drive(release.output, drives(release.output));
    timeline_.cancel(&release);
}

void Hoppers::outputsChanged(const Pattern &switchedOff)
{
    for (const auto &[input, release] : releases_) {
        if (release.status == hopperActive && holds(switchedOff, release.output))
            end(input, hopperStopped);
    }
    for (auto &[input, hopper] : hoppers_)
        hopper.update();
}

bool Hoppers::drives(unsigned int output) const
{
    return std::any_of(releases_.begin(), releases_.end(), [output](const auto &entry) {
        return entry.second.status == hopperActive && entry.second.output == output;
    });
}

// Whoever waits for the next coin is called off by it.
void Hoppers::expectCoin(unsigned int input)
{
    const Release *release = &releases_[input];
    timeline_.cancel(release);
    timeline_.after(coinTimeout, release, [this, input] { end(input, hopperRanOut); });
}

void Hoppers::changed(unsigned int input, bool level)
{
    const auto found = releases_.find(input);
    if (found == releases_.end() || found->second.status != hopperActive || level != found->second.activeLevel)
        return;
    if (++found->second.paid == found->second.asked)
        end(input, hopperPaid);
    else
        expectCoin(input);
}

std::optional<Reply> Hoppers::answer(Request request, Payload payload)
{
    const unsigned int input = payload.empty() ? 0 : payload[0];
    switch (request) {
    case Request::ReleaseParallelHopperCoins:
        if (input >= inputCount || payload[3] >= outputCount)
            return refuse(statusWrongValue);
        if (release(input).status == hopperActive)
            return refuse(statusBusy);
        return perform(
            [this, input, release = Release{payload[3], u16be(payload, 4), 0, hopperActive, (payload[2] & 1) != 0}] {
                start(input, release);
            });
    case Request::GetParallelHopperStatus:
        if (input >= inputCount)
            return refuse(statusWrongValue);
        return tell({release(input).status, lowByte(release(input).paid)});
    case Request::StopHopperCoinRelease:
        if (input >= inputCount)
            return refuse(statusWrongValue);
        return perform([this, input] {
            if (release(input).status == hopperActive)
                end(input, hopperStopped);
        });
    default:
        return std::nullopt;
    }
}

void Hoppers::powerLost()
{
    for (auto &[input, release] : releases_)
        timeline_.cancel(&release);
    releases_.clear();
}

}  // namespace sim
