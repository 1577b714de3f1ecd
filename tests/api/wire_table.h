// One row a call of the public class: what it puts on the wire on each model, byte for byte, or how it is refused.
//
// The bytes stand here as literals and come from no table of the library.
#ifndef SORVANE_TESTS_API_WIRE_TABLE_H
#define SORVANE_TESTS_API_WIRE_TABLE_H

#include "tests/support/open_board.h"

#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

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
    WireCase &&notOnR20() && { return std::move(*this).onR20("error 25"); }
    WireCase &&onlyOnR35() && { return std::move(*this).notOnR20().onR20s("error 26"); }
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

inline WireCase row(std::string name, const std::string &expected, std::function<int(SorvaneUSB &)> call)
{
    return {std::move(name), std::move(call), {expected, expected, expected}, {}, false};
}

/// Any place for data or results that nobody looks at.
struct Anywhere {
    template <class Data>
    operator Data *() const
    {
        static Data somewhere[64];
        return somewhere;
    }
};
constexpr Anywhere anywhere;

/// A result that is 9 before, and the value after a call that succeeds.
struct Result {
    unsigned long value;
    unsigned long afterFailure = 9;
};

/// Bytes that are all 9 before, and these after a call that succeeds: "01 02 09".
struct Stored {
    std::string bytes;
};

/// What is handed over for one parameter of a call, and what is looked at afterwards.
template <class Parameter, class Argument>
struct Passed {
    Parameter get() { return static_cast<Parameter>(argument); }
    void check(int) const {}
    Argument argument;
};
template <class Data>
struct Passed<Data *, Result> {
    Data *get() { return &data; }
    void check(int success) const
    {
        EXPECT_EQ(static_cast<unsigned long>(data), success ? expected.value : expected.afterFailure);
    }
    Result expected;
    Data data = Data(9);
};
template <class Data>
struct Passed<Data *, Stored> {
    Data *get() { return reinterpret_cast<Data *>(memory.data()); }
    void check(int success) const
    {
        const std::size_t size = (expected.bytes.size() + 1) / 3;
        const sim::Bytes untouched(size, 9);
        EXPECT_EQ(hex(memory.data(), size), success ? expected.bytes : hex(untouched.data(), size));
    }
    Stored expected;
    sim::Bytes memory = sim::Bytes(1024, 9);
};
template <class Data>
struct Passed<Data *, std::vector<Data>> {
    Data *get() { return data.data(); }
    void check(int) const {}
    std::vector<Data> data;
};

/// The row of a call that says all by its arguments; where an operation has several forms, call<Parameters...> picks
/// one.
template <class... Parameters, class... Arguments>
WireCase call(std::string name, const std::string &expected, int (SorvaneUSB::*operation)(Parameters...),
              Arguments... arguments)
{
    return row(std::move(name), expected, [=](SorvaneUSB &usb) {
        std::tuple<Passed<Parameters, Arguments>...> all{Passed<Parameters, Arguments>{arguments}...};
        const int success = std::apply([&](auto &...passed) { return (usb.*operation)(passed.get()...); }, all);
        std::apply([&](auto &...passed) { (passed.check(success), ...); }, all);
        return success;
    });
}

using U = SorvaneUSB;
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
