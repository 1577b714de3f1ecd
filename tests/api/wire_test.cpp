#include "board/requests.h"
#include "tests/api/wire_table.h"

#include <set>
#include <sstream>

namespace tests
{

WireCases everyWireCase()
{
    WireCases all;
    for (const auto &cases :
         {inputAndOutputCases(), coinAndReelCases(), serialCases(), polledHostCases(), memoryCases(), identityCases()})
        all.insert(all.end(), cases.begin(), cases.end());
    return all;
}

namespace
{

bool isRefusal(const std::string &expected)
{
    return expected.rfind("error ", 0) == 0;
}

class Wire : public testing::TestWithParam<sim::Model>
{
protected:
    const std::string &expectedOf(const WireCase &row) const
    {
        return row.expected[static_cast<std::size_t>(GetParam()) - 1];
    }
};

void script(sim::VirtualBoard &board, const WireCase &row)
{
    for (const sim::Bytes &answer : row.answers)
        board.answerNext(answer);
    board.faults().add(sim::Fault::answer({}).forever());
}

TEST_P(Wire, CarriesEachCallByteForByteOrRefusesIt)
{
    for (const WireCase &row : everyWireCase()) {
        SCOPED_TRACE(row.name);
        OpenBoard open(GetParam());
        script(open.board, row);
        const std::string &expected = expectedOf(row);
        const int result = row.call(open.usb);
        if (isRefusal(expected)) {
            EXPECT_EQ(result, 0);
            EXPECT_EQ("error " + std::to_string(open.usb.GetLastError()), expected);
            EXPECT_EQ(wire(open.board), "");
        } else {
            EXPECT_EQ(result, 1);
            EXPECT_EQ(open.usb.GetLastError(), usbErrorNone);
            EXPECT_EQ(wire(open.board), expected);
        }
    }
}

// Each row's call checks by itself that its results are what they were.
TEST_P(Wire, LeavesTheResultsAloneWhenTheBoardRefuses)
{
    for (const WireCase &row : everyWireCase()) {
        if (isRefusal(expectedOf(row)) || expectedOf(row).empty())
            continue;
        SCOPED_TRACE(row.name);
        OpenBoard open(GetParam());
        open.board.faults().add(sim::Fault::status(0x21).forever());
        EXPECT_EQ(errorOf(open.usb, row.call(open.usb)), 0x21);
    }
}

TEST_P(Wire, SendsNothingWithoutABoard)
{
    for (const WireCase &row : everyWireCase()) {
        if (row.onlyOnABoard)
            continue;
        SCOPED_TRACE(row.name);
        SorvaneUSB closed;
        closed.ClearErrors();
        EXPECT_EQ(row.call(closed), 0);
        const bool sas = row.name.find("SAS") != std::string::npos;
        EXPECT_EQ(closed.GetLastError(), sas ? usbErrorNotSupported : usbErrorNone);
    }
}

INSTANTIATE_TEST_SUITE_P(Models, Wire, testing::ValuesIn(everyModel), nameOfModel);

/// The requests of all rows, "78/1", and of the tests that carry data in chunks, which have files of their own.
std::set<std::string> requestsSeen()
{
    std::set<std::string> seen = {"4/2",  "5/2",   "70/6",  "71/6",  "72/6", "73/6",
                                  "74/6", "116/6", "117/6", "102/3", "102/4"};
    for (const WireCase &row : everyWireCase()) {
        for (const std::string &expected : row.expected) {
            std::istringstream words(expected);
            for (std::string word; words >> word;)
                seen.insert(word.substr(0, word.find(';')));
        }
    }
    return seen;
}

TEST(WireTable, HasEveryRequestOfEveryBoard)
{
    const std::set<std::string> seen = requestsSeen();
    for (const NamedRequest &row : requestTable) {
        const std::string code = std::to_string(codeOf(row.request)) + "/";
        const bool onPipe = seen.count(code + std::to_string(pipeOf(row.request))) > 0;
        const bool onPort1 = pipeOf(row.request) == 3 && seen.count(code + "4") > 0;
        EXPECT_TRUE(onPipe || onPort1) << "no test has seen " << row.name << " on the wire";
    }
}

/// Where a code of the library is seen: in a row of the table above, or in a test of its own. The compiler wants a new
/// code to be entered here.
bool isSeen(_usbErrorCode code, const std::string &expectations)
{
    switch (code) {
    case usbErrorNone:
    case usbErrorPipeNumber:
    case usbErrorTransfer:
        return true;  // transport_test.cpp
    case usbErrorDataLength:
    case usbErrorLength:
    case usbErrorParameter:
    case usbErrorBaudRate:
    case usbErrorPortType:
    case usbErrorRampReel:
    case usbErrorNotSupported:
    case usbErrorNotSupportedR20s:
    case usbErrorNullPointer:
        return expectations.find("; error " + std::to_string(code) + ";") != std::string::npos;
    }
    return true;  // not a code of the library
}

TEST(WireTable, HasEveryCodeOfTheLibrary)
{
    std::string expectations;
    for (const WireCase &row : everyWireCase())
        for (const std::string &expected : row.expected)
            expectations += "; " + expected + ";";
    for (int code = 0; code < 64; ++code)
        EXPECT_TRUE(isSeen(static_cast<_usbErrorCode>(code), expectations)) << "no test has seen error " << code;
}

}  // namespace

}  // namespace tests
