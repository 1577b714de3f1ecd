// Faults strike the exchanges that they were meant for, and no others.
#include "tests/sim/sim_test.h"

#include <cerrno>

namespace sim::faults_test
{

using FaultsTest = BoardTest;

TEST_F(FaultsTest, AFilterSkipAndCountPickTheExchanges)
{
    board.faults().add(Fault::status(99).on(85).skip(1).times(2));
    const int expected[] = {0, 99, 99, 0};
    for (const int status : expected) {
        EXPECT_EQ(refusal(75, 1), 0) << "another request";
        EXPECT_EQ(refusal(85, 1, {5}), status);
    }
    EXPECT_TRUE(board.faults().empty());
}

TEST_F(FaultsTest, ACodeOnTwoPipesIsToldApart)
{
    board.faults().add(Fault::status(99).on(124, 4).forever());
    EXPECT_EQ(refusal(124, 1, {0}), 0);
    EXPECT_EQ(refusal(124, 3), 0);
    EXPECT_EQ(refusal(124, 4), 99);
    EXPECT_EQ(refusal(124, 4), 99);
}

TEST_F(FaultsTest, ARefusedExchangeIsNotCarriedOutAnAnsweredOneIs)
{
    board.faults().add(Fault::status(99));
    refusal(85, 1, {5});
    EXPECT_EQ(board.outputs().brightness(), 10U);
    board.answerNext({1, 2, 3});
    EXPECT_EQ(ask(85, 1, {5}), (Bytes{1, 2, 3}));
    EXPECT_EQ(board.outputs().brightness(), 5U);
    ASSERT_EQ(board.exchanges().size(), 2U);
    EXPECT_EQ(board.exchanges()[0], (Exchange{85, 1, {5}, 99, {}}));
    EXPECT_EQ(board.exchanges()[1], (Exchange{85, 1, {5}, 0, {1, 2, 3}}));
}

TEST_F(FaultsTest, ALostCallIsNotSeenUnlessItWasCarriedOut)
{
    board.faults().add(Fault::ioctlFails(EIO));
    EXPECT_EQ(refusal(85, 1, {5}), -1);
    EXPECT_TRUE(board.exchanges().empty());
    board.faults().add(Fault::ioctlFails(EINTR).carriedOut());
    EXPECT_EQ(refusal(85, 1, {5}), -1);
    EXPECT_EQ(board.outputs().brightness(), 5U);
    EXPECT_EQ(board.exchanges().size(), 1U);
}

TEST_F(FaultsTest, AnswersAreCutAndFilledUp)
{
    board.faults().add(Fault::shortAnswer(2));
    board.faults().add(Fault::emptyAnswer());
    board.faults().add(Fault::longAnswer(300));
    EXPECT_EQ(ask(75, 1).size(), 2U);
    EXPECT_EQ(ask(75, 1).size(), 0U);
    EXPECT_EQ(ask(75, 1).size(), 300U);
    EXPECT_EQ(ask(75, 1).size(), 5U);
}

}  // namespace sim::faults_test
