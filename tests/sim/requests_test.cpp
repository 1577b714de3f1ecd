// Which requests each model knows, and with which payloads.
#include "sim/board/payload_lengths.h"
#include "tests/sim/sim_test.h"

#include <set>

namespace sim
{
namespace
{

using RequestsTest = EveryModel;
INSTANTIATE_TEST_SUITE_P(Models, RequestsTest, testing::ValuesIn(everyModel), nameOfParameter);

const std::set<int> lackedByR20{116, 117, 119, 120, 122, 123, 124, 125, 126, 127, 128, 129, 220, 221};

std::set<int> lackedBy(Model model)
{
    return model == Model::R20    ? lackedByR20
           : model == Model::R20s ? std::set<int>{70, 71, 220, 221}
                                  : std::set<int>{70, 71};
}

TEST_P(RequestsTest, AModelKnowsItsRequestsAndNoOthers)
{
    const std::set<int> lacked = lackedBy(GetParam());
    for (int pipe = 1; pipe <= 7; ++pipe) {
        for (int code = 0; code < 256; ++code) {
            const bool known = nameOfRequest(static_cast<unsigned char>(code), pipe) && lacked.count(code) == 0;
            // Longer than any payload, so that a known request is refused for its length, if at all.
            const int status = refusal(static_cast<unsigned char>(code), pipe, Bytes(70000));
            EXPECT_EQ(status == statusUnknownRequest, !known) << code << " on pipe " << pipe;
            EXPECT_NE(status, 0) << code << " on pipe " << pipe;
        }
    }
}

TEST_P(RequestsTest, APayloadOfTheWrongLengthIsRefused)
{
    const std::size_t configure = GetParam() == Model::R20 ? 3 : 4;
    const std::size_t release = GetParam() == Model::R20 ? 7 : 8;
    const struct {
        unsigned char code;
        int pipe;
        std::size_t length;
    } cases[] = {{3, 2, 5},  {20, 5, 4},  {65, 5, 8},  {69, 5, 4},          {75, 1, 0},       {77, 1, 10}, {78, 1, 2},
                 {83, 1, 5}, {85, 1, 1},  {86, 1, 4},  {87, 1, 4},          {90, 1, 3},       {97, 4, 6},  {99, 3, 1},
                 {99, 4, 0}, {104, 3, 1}, {121, 4, 2}, {107, 1, configure}, {112, 1, release}};
    for (const auto &each : cases) {
        for (std::size_t length = 0; length < each.length + 2; ++length) {
            const int status = refusal(each.code, each.pipe, Bytes(length));
            EXPECT_EQ(status == statusWrongLength, length != each.length) << int{each.code} << ": " << length;
        }
    }
}

TEST_P(RequestsTest, NumbersOutOfRangeAreRefused)
{
    const std::vector<std::pair<unsigned char, Bytes>> cases = {
        {78, {1, 32}},      {79, {1, 32}}, {85, {11}},     {86, {4, 0, 0, 0}}, {87, {3, 1, 0, 1}},
        {87, {0, 3, 0, 1}}, {88, {3, 0}},  {108, {24, 1}}, {108, {3, 2}},      {109, {24}},
        {110, {24}},        {111, {24}},   {113, {33}},    {114, {2}},
    };
    for (const auto &[code, payload] : cases)
        EXPECT_EQ(refusal(code, 1, payload), statusWrongValue) << int{code};
}

TEST_P(RequestsTest, WithoutFirmwareOnlyPipe6Answers)
{
    board.firmware().setRunning(false);
    EXPECT_EQ(refusal(75, 1), statusNoFirmware);
    EXPECT_EQ(refusal(6, 2), statusNoFirmware);
    EXPECT_EQ(refusal(100, 3), statusNoFirmware);
    EXPECT_EQ(ask(74, 6), Bytes{0});
}

TEST_P(RequestsTest, TheTraceKeepsEveryExchange)
{
    ask(85, 1, {3});
    refusal(85, 1, {11});
    ASSERT_EQ(board.exchanges().size(), 2U);
    EXPECT_EQ(board.exchanges()[0], (Exchange{85, 1, {3}, 0, {}}));
    EXPECT_EQ(board.exchanges()[1], (Exchange{85, 1, {11}, statusWrongValue, {}}));
}

}  // namespace
}  // namespace sim
