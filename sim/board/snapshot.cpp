#include "sim/board/snapshot.h"

namespace sim
{

namespace
{

void noteHopper(Diary &diary, unsigned int input, const HopperSnapshot &was, const HopperSnapshot &is)
{
    diary.noteChange(journal::Kind::Hopper, input, was.stock, is.stock, journal::Aspect::Stock);
    diary.noteChange(journal::Kind::Hopper, input, was.stock == 0, is.stock == 0, journal::Aspect::Empty);
    diary.noteChange(journal::Kind::Hopper, input, was.jammed, is.jammed, journal::Aspect::Jammed);
    diary.noteChange(journal::Kind::Hopper, input, was.paid, is.paid, journal::Aspect::Paid);
    diary.noteChange(journal::Kind::Hopper, input, was.paying, is.paying, journal::Aspect::Paying);
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
    diary.noteChange(journal::Kind::Plugged, 0, was.plugged, is.plugged);
    diary.noteChange(journal::Kind::Firmware, 0, was.firmwareRunning, is.firmwareRunning);
    for (unsigned int input = 0; input < inputCount; ++input)
        diary.noteChange(journal::Kind::Input, input, holds(was.inputs, input), holds(is.inputs, input));
    for (unsigned int input = 0; input < counterCount; ++input)
        diary.noteChange(journal::Kind::Counter, input, was.counters[input], is.counters[input]);
    for (unsigned int input = 0; input < inputCount; ++input)
        noteHopper(diary, input, was.hoppers[input], is.hoppers[input]);
    for (unsigned int output = 0; output < outputCount; ++output)
        diary.noteChange(journal::Kind::Output, output, was.output(output), is.output(output));
    for (unsigned int reel = 0; reel < is.turning.size(); ++reel)
        diary.noteChange(journal::Kind::Reel, reel, was.turning[reel], is.turning[reel]);
}

}  // namespace sim
