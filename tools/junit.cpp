#include "tools/junit.h"

#include "tools/files.h"

#include <algorithm>

namespace tools
{

namespace
{

std::string escaped(const std::string &text)
{
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c >= 0 && c < ' ' ? ' ' : c;
        }
    }
    return result;
}

auto count(const std::vector<TestReport> &reports, Outcome outcome)
{
    return std::count_if(reports.begin(), reports.end(),
                         [outcome](const TestReport &report) { return report.verdict.outcome == outcome; });
}

}  // namespace

const char *wordFor(Outcome outcome)
{
    return outcome == Outcome::Passed ? "passed" : outcome == Outcome::Failed ? "FAILED" : "not fitted";
}

bool hasFailed(const std::vector<TestReport> &reports)
{
    return count(reports, Outcome::Failed) > 0;
}

Json jsonOf(const std::vector<TestReport> &reports)
{
    Json list = Json::array();
    for (const TestReport &report : reports) {
        std::string outcome = wordFor(report.verdict.outcome);
        std::transform(outcome.begin(), outcome.end(), outcome.begin(),
                       [](char c) { return c == ' ' ? '_' : c | 0x20; });
        list.push_back({{"test", report.name},
                        {"outcome", outcome},
                        {"detail", report.verdict.detail},
                        {"seconds", report.seconds}});
    }
    return list;
}

void writeJUnit(const std::string &file, const std::string &suite, const std::vector<TestReport> &reports)
{
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"" + escaped(suite) +
                      "\" tests=\"" + std::to_string(reports.size()) + "\" failures=\"" +
                      std::to_string(count(reports, Outcome::Failed)) + "\" skipped=\"" +
                      std::to_string(count(reports, Outcome::NotFitted)) + "\">\n";
    for (const TestReport &report : reports) {
        xml += "  <testcase classname=\"sorvane\" name=\"" + escaped(report.name) + "\" time=\"" +
               std::to_string(report.seconds) + "\">";
        const std::string detail = escaped(report.verdict.detail);
        if (report.verdict.outcome == Outcome::Failed)
            xml += "<failure message=\"" + detail + "\"/>";
        else if (report.verdict.outcome == Outcome::NotFitted)
            xml += "<skipped message=\"" + detail + "\"/>";
        else
            xml += "<system-out>" + detail + "</system-out>";
        xml += "</testcase>\n";
    }
    writeFile(file, xml + "</testsuite>\n");
}

}  // namespace tools
