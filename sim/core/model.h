// What distinguishes the three board models.
#ifndef SORVANE_SIM_CORE_MODEL_H
#define SORVANE_SIM_CORE_MODEL_H

#include <cstddef>

namespace sim
{

enum class Model { R20 = 1, R20s = 2, R35 = 3 };

constexpr Model everyModel[] = {Model::R20, Model::R20s, Model::R35};

constexpr const char *nameOf(Model model)
{
    return model == Model::R20 ? "R20" : model == Model::R20s ? "R20s" : "R35";
}

/// Bytes of the firmware that must have been loaded before the board runs.
constexpr std::size_t firmwareLength(Model model)
{
    return model == Model::R20 ? 15888 : model == Model::R20s ? 14002 : 14172;
}

/// Most payload bytes of one answer.
constexpr std::size_t largestAnswer(Model model)
{
    return model == Model::R20 ? 62 : 256;
}

}  // namespace sim

#endif
