// One row a call of the public class: what it puts on the wire on each model, byte for byte, or how it is refused.
//
// The bytes stand here as literals and come from no table of the library.
#ifndef SORVANE_TESTS_API_WIRE_TABLE_H
#define SORVANE_TESTS_API_WIRE_TABLE_H

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/open_board.h"

namespace tests
{

struct WireCase {
    std::string name;
    /// The call. Where it returns 0 it also checks that the results are as they were before.
    std::function<int(SorvaneUSB &)> call;
    /// On R20, R20s and R35: "78/1 0A 1F" in the form of wire(), or "error 25" for a refusal without an exchange.
    std::string expected[3];
    /// What the board answers to the exchanges in turn, and empty answers after these.
    std::vector<sim::Bytes> answers;
    /// The call expects results that exist only with an open board.
    bool onlyOnABoard = false;

    WireCase &&onR20(std::string other) &&
    {
        expected[0] = std::move(other);
        return std::move(*this);
    }
    WireCase &&onR20s(std::string other) &&
    {
        expected[1] = std::move(other);
        return std::move(*this);
    }
    WireCase &&withBoard() &&
    {
        onlyOnABoard = true;
        return std::move(*this);
    }
    WireCase &&answered(std::vector<sim::Bytes> bytes) &&
    {
        answers = std::move(bytes);
        return std::move(*this);
    }
};

inline WireCase row(std::string name, std::function<int(SorvaneUSB &)> call, const std::string &expected)
{
    return {std::move(name), std::move(call), {expected, expected, expected}, {}, false};
}

using WireCases = std::vector<WireCase>;

WireCases inputAndOutputCases();
WireCases coinAndReelCases();
WireCases serialCases();
WireCases polledHostCases();
WireCases memoryCases();
WireCases identityCases();
WireCases everyWireCase();

}  // namespace tests

#endif
