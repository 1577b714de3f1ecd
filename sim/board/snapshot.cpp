#include "sim/board/snapshot.h"

namespace sim
{

namespace
{

using journal::Aspect;
using journal::Kind;

void noteHopper(Diary &diary, unsigned int input, const HopperSnapshot &was, const HopperSnapshot &is)
{
    diary.noteChange(Kind::Hopper, input, was.stock, is.stock, Aspect::Stock);
    diary.noteChange(Kind::Hopper, input, was.stock == 0, is.stock == 0, Aspect::Empty);
    diary.noteChange(Kind::Hopper, input, was.jammed, is.jammed, Aspect::Jammed);
    diary.noteChange(Kind::Hopper, input, was.paid, is.paid, Aspect::Paid);
    diary.noteChange(Kind::Hopper, input, was.paying, is.paying, Aspect::Paying);
}

}  // namespace

std::uint32_t Snapshot::output(unsigned int number) const
{
    std::uint32_t bits = 0;
    for (const auto &[pattern, bit] : {std::pair{&onPattern, journal::inOnPattern},
                                       {&offPattern, journal::inOffPattern},
                                       {&driven, journal::drivenByRelease},
                                       {&pulsedOn, journal::pulsedOn},
                                       {&pulsedOff, journal::pulsedOff}})
        bits |= holds(*pattern, number) ? bit : 0U;
    return bits;
}

void noteChanges(Diary &diary, const Snapshot &was, const Snapshot &is)
{
    diary.noteChange(Kind::Plugged, 0, was.plugged, is.plugged);
    diary.noteChange(Kind::Firmware, 0, was.firmwareRunning, is.firmwareRunning);
    for (unsigned int input = 0; input < inputCount; ++input)
        diary.noteChange(Kind::Input, input, holds(was.inputs, input), holds(is.inputs, input));
    for (unsigned int input = 0; input < counterCount; ++input)
        diary.noteChange(Kind::Counter, input, was.counters[input], is.counters[input]);
    for (unsigned int input = 0; input < inputCount; ++input)
        noteHopper(diary, input, was.hoppers[input], is.hoppers[input]);
    for (unsigned int output = 0; output < outputCount; ++output)
        diary.noteChange(Kind::Output, output, was.output(output), is.output(output));
    for (unsigned int reel = 0; reel < is.turning.size(); ++reel)
        diary.noteChange(Kind::Reel, reel, was.turning[reel], is.turning[reel]);
}

}  // namespace sim
