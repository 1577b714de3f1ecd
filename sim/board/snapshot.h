// The states of a board that its journal tells of, at one moment.
#ifndef SORVANE_SIM_BOARD_SNAPSHOT_H
#define SORVANE_SIM_BOARD_SNAPSHOT_H

#include "sim/board/diary.h"
#include "sim/board/pulsed_inputs.h"
#include "sim/core/pattern.h"

namespace sim
{

struct HopperSnapshot {
    unsigned int stock = 0;
    unsigned int paid = 0;
    bool jammed = false;
    bool paying = false;

    bool operator==(const HopperSnapshot &) const = default;
};

struct Snapshot {
    bool plugged = true;
    bool firmwareRunning = false;
    Pattern inputs{};
    std::array<unsigned char, counterCount> counters{};
    std::array<HopperSnapshot, inputCount> hoppers{};  ///< by input; one that is missing is empty
    Pattern onPattern{};
    Pattern offPattern{};
    Pattern driven{};
    Pattern pulsedOn{};
    Pattern pulsedOff{};
    std::array<bool, 3> turning{};

    bool operator==(const Snapshot &) const = default;

    /// journal::OutputBits.
    std::uint32_t output(unsigned int number) const;
};

/// Writes down what differs.
void noteChanges(Diary &diary, const Snapshot &was, const Snapshot &is);

}  // namespace sim

#endif
