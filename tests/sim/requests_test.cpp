// Which requests each model knows, with which payloads, and what it refuses.
#include "sim/board/payload_lengths.h"
#include "tests/sim/sim_test.h"

#include <set>

namespace sim::requests_test
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

struct Refused {
    int status;
    unsigned char code;
    int pipe;
    Bytes payload;
};

/// What the library keeps from a board, or never asks for.
std::vector<Refused> refusedByAll()
{
    constexpr int value = statusWrongValue, length = statusWrongLength;
    // Among them each port's divisor for the other, and format 3 without type 0.
    return {{value, 78, 1, {1, 32}},
            {value, 79, 1, {1, 32}},
            {value, 85, 1, {11}},
            {value, 86, 1, {4, 0, 0, 0}},
            {value, 87, 1, {3, 1, 0, 1}},
            {value, 87, 1, {0, 3, 0, 1}},
            {value, 88, 1, {3, 0}},
            {length, 88, 1, {0, 5, 9}},
            {value, 108, 1, {24, 1}},
            {value, 108, 1, {3, 2}},
            {value, 109, 1, {24}},
            {value, 110, 1, {24}},
            {value, 111, 1, {24}},
            {value, 113, 1, {33}},
            {value, 114, 1, {2}},
            {value, 97, 3, {0, 0, 0, 0, 0x64, 0xFF}},
            {value, 97, 4, {0, 0, 0, 0, 0xD9, 0x01}},
            {value, 97, 3, {1, 3, 0, 0, 0xD9, 1}},
            {value, 97, 3, {4, 0, 0, 0, 0xD9, 1}},
            {length, 101, 3, {50, 2, 0xAB}},
            {value, 105, 3, {4}},
            {value, 96, 7, {161, 8, 0, 1}},
            {length, 96, 7, {12, 8, 0, 1}},
            {value, 5, 2, {59, 0, 0}},
            {length, 4, 2, Bytes(61, 58)}};
}

std::vector<Refused> refusedBy(Model model)
{
    constexpr int value = statusWrongValue, length = statusWrongLength, kept = statusProtected;
    if (model == Model::R20)
        return {{value, 71, 6, {4, 0xFD, 0xFF, 1, 2, 3, 4}},
                {length, 71, 6, {4, 0, 0, 1, 2, 3}},
                {value, 70, 6, {63, 0, 0}}};
    const unsigned char lastPage = model == Model::R20s ? 32 : 64;
    return {{value, 116, 6, {2, 0, lastPage, 0xFF, 0x3F}},
            {value, 116, 6, {1, 0, static_cast<unsigned char>(lastPage + 1), 0, 0}},
            {value, 116, 6, {1, 1, 1, 0, 0}},
            {kept, 117, 6, {1, 0, 13, 0, 0, 1}},
            {kept, 117, 6, {1, 0, 15, 0, 0, 1}},
            {value, 125, 1, {255, 255, 255, 255, 1, 0, 0, 0, 4}},
            {value, 125, 1, {24, 255, 255, 255, 1, 0, 0, 0, 4}}};
}

TEST_P(RequestsTest, WhatNoBoardAllowsIsRefused)
{
    ask(3, 2, {64, 2, 0x7F, 0xFF, 0x51});
    ask(94, 7);
    std::vector<Refused> cases = refusedByAll();
    for (Refused &each : refusedBy(GetParam()))
        cases.push_back(std::move(each));
    for (const Refused &each : cases)
        EXPECT_EQ(refusal(each.code, each.pipe, each.payload), each.status) << int{each.code};
    if (GetParam() == Model::R20)
        return;
    EXPECT_EQ(ask(116, 6, {0, 1, 1, 0, 0}).size(), 256U) << "the longest that may be read";
    for (const unsigned char page : {12, 16})
        ask(117, 6, {1, 0, page, 0, 0, 1});  // the firmware's neighbours
}

TEST_P(RequestsTest, WithoutFirmwareOnlyPipe6Answers)
{
    board.firmware().setRunning(false);
    EXPECT_EQ(refusal(75, 1), statusNoFirmware);
    EXPECT_EQ(refusal(6, 2), statusNoFirmware);
    EXPECT_EQ(refusal(100, 3), statusNoFirmware);
    EXPECT_EQ(ask(74, 6), Bytes{0});
}

}  // namespace sim::requests_test
