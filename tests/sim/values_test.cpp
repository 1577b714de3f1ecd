// docs/virtual_values.md, tried: behind each of its tables stands a comment with a line for each row, and what the line
// says is done to a board. Between semicolons:
//
//   107/1 03 00 = 01 ...   request 107 on pipe 1 with these bytes; its answer, `...` for whatever follows
//   107/1 03 00 ! 66       the status with which it is refused
//   +20ms                  time passes
//   shows "place":42       the board's state has this
//   board R20,serial1=sas  another board takes its place
//   input 3 on             any command of `ctl`
//
// A comment may begin with the table's board, and with `first` and what comes before each of its lines.
#include "sim/language/board_options.h"
#include "sim/language/commands.h"
#include "tests/sim/sim_test.h"

#include <fstream>
#include <regex>
#include <sstream>

namespace sim::values_test
{

class Trial
{
public:
    explicit Trial(const std::string &board) { plug(board); }

    void follow(const std::string &steps)
    {
        static const std::regex exchange("(\\d+)/(\\d)([ 0-9A-F]*)(?:(=|!)(.*))?");
        for (std::string step : splitAt(steps, ';')) {
            step = step.substr(std::min(step.find_first_not_of(' '), step.size()));
            std::smatch parts;
            if (std::regex_match(step, parts, exchange))
                ask(parts);
            else if (step[0] == '+')
                clock_.advance(durationFrom(step.substr(1)));
            else if (step.starts_with("board "))
                plug(step.substr(6));
            else if (step.starts_with("shows "))
                expectPart(step.substr(6), Command::parse({"state", "--json"}).carryOut(session_).data);
            else
                (void)Command::parse(splitWords(step)).carryOut(session_);
        }
    }

    unsigned int checks = 0;

private:
    void plug(const std::string &board)
    {
        const bool says = board.find("firmware=") != std::string::npos;
        plugBoards(boards_, boardsFrom({"0=" + board + (says ? "" : ",firmware=running")}));
    }

    void ask(const std::smatch &parts)
    {
        Bytes payload;
        std::istringstream bytes(parts[3]);
        for (std::string byte; bytes >> byte;)
            payload.push_back(static_cast<unsigned char>(std::stoul(byte, nullptr, 16)));
        const Answer answer = boards_.find(0)->exchange(static_cast<unsigned char>(std::stoul(parts[1])),
                                                        std::stoi(parts[2]), payload.data(), payload.size());
        EXPECT_EQ(answer.status, parts[4] == "!" ? std::stoi(parts[5]) : 0) << parts[0];
        checks += parts[4].matched ? 1 : 0;
        if (parts[4] != "=")
            return;
        std::string text;
        for (const unsigned char byte : answer.bytes) {
            const char digits[] = {' ', "0123456789ABCDEF"[byte >> 4], "0123456789ABCDEF"[byte & 15], 0};
            text += digits;
        }
        const std::string expected = parts[5];
        const std::size_t open = expected.find(" ...");
        EXPECT_EQ(text.substr(0, open), expected.substr(0, open)) << parts[0];
    }

    void expectPart(const std::string &part, const std::string &whole)
    {
        ++checks;
        EXPECT_NE(whole.find(part), std::string::npos) << part << " in " << whole;
    }

    ManualClock clock_;
    VirtualBoards boards_{clock_};
    cabinet::Cabinet nameless_;
    Session session_{boards_, nameless_};
};

void tryTable(const std::vector<std::string> &rows, std::istream &page)
{
    std::string board = "R35", first, line;
    std::size_t row = 0;
    while (std::getline(page, line) && line != "-->") {
        if (line.starts_with("first ")) {
            first = line.substr(6);
        } else if (row == 0 && line.starts_with("board ") && line.find(';') == std::string::npos) {
            board = line.substr(6);
        } else {
            ASSERT_LT(row, rows.size()) << "no row for " << line;
            SCOPED_TRACE(rows[row++]);
            Trial trial(board);
            if (!first.empty())
                trial.follow(first);
            EXPECT_NO_THROW(trial.follow(line));
            EXPECT_GT(trial.checks, 0U) << "nothing is tried";
        }
    }
    EXPECT_EQ(row, rows.size()) << "rows that nothing tries";
}

TEST(ValuesTest, EachRowOfThePageHoldsOnABoard)
{
    std::ifstream page(VALUES_PAGE);
    std::vector<std::string> rows;
    std::string all, line;
    while (std::getline(page, line)) {
        all += line + "\n";
        if (line == "<!-- tried")
            tryTable(std::exchange(rows, {}), page);
        else if (line.starts_with("## "))
            EXPECT_EQ(std::exchange(rows, {}).size(), 0U) << "a table without a trial before " << line;
        else if (line.starts_with("| ") && line != "| value | effect | unit |")
            rows.push_back(line);
    }
    EXPECT_TRUE(rows.empty());
    for (int status = statusUnknownRequest; status <= statusDisabled; ++status)
        EXPECT_NE(all.find("| status " + std::to_string(status) + " |"), std::string::npos) << status;
}

}  // namespace sim::values_test
