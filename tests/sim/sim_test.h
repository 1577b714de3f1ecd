// Words in which the tests of the virtual boards are written.
#ifndef SORVANE_TESTS_SIM_SIM_TEST_H
#define SORVANE_TESTS_SIM_SIM_TEST_H

#include "sim/board/virtual_board.h"

#include <gtest/gtest.h>

namespace sim
{

inline void PrintTo(Model model, std::ostream *out)
{
    *out << nameOf(model);
}

/// A board whose firmware runs, and whose time the test advances.
class BoardTest : public testing::Test
{
public:
    explicit BoardTest(Model model = Model::R35) : board(model, time) { board.firmwareRunning(); }

    Bytes ask(unsigned char request, int pipe, const Bytes &payload = {})
    {
        const Answer answer = board.exchange(request, pipe, payload.data(), payload.size());
        EXPECT_EQ(answer.status, 0) << "request " << int{request} << " on pipe " << pipe;
        return answer.bytes;
    }

    int refusal(unsigned char request, int pipe, const Bytes &payload = {})
    {
        return board.exchange(request, pipe, payload.data(), payload.size()).status;
    }

    void pass(Nanoseconds duration) { time.advance(duration); }

    ManualClock time;
    VirtualBoard board;
};

class EveryModel : public BoardTest, public testing::WithParamInterface<Model>
{
public:
    EveryModel() : BoardTest(GetParam()) {}
};

inline std::string nameOfParameter(const testing::TestParamInfo<Model> &info)
{
    return nameOf(info.param);
}

}  // namespace sim

#endif
