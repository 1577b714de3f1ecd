// `show`: what a recording holds, as `trace` would have told it.
#include "sim/cabinet/event_names.h"
#include "tools/command.h"
#include "tools/failure.h"
#include "tools/trace_options.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>

namespace tools
{

namespace
{

struct ShowOptions {
    std::string file;
    ReportOptions report;
};

void show(std::istream &stream, const std::string &file, trace::Report &report)
{
    int number = 1;
    try {
        std::string line;
        std::getline(stream, line);
        report.begin(journal::headerFrom(line));
        for (++number; std::getline(stream, line); ++number) {
            if (const std::optional<journal::Event> event = journal::eventFrom(line))
                report.add(*event);
        }
    } catch (const journal::FormatError &error) {
        throw Refusal(file + ":" + std::to_string(number) + ": " + error.what(),
                      "a recording comes from sorvane trace --record, sorvane-sim run --record or ctl events --json");
    }
}

int carryOut(const ShowOptions &options, const Settings &settings)
{
    trace::Report report(stdout, options.report.form(settings), options.report.chosen(),
                         cabinet::eventNames(settings.cabinet));
    std::ifstream stream(options.file);
    if (!stream)
        throw Refusal(options.file + " cannot be read: " + std::strerror(errno));
    show(stream, options.file, report);
    if (!report.end())
        throw Refusal(std::string("not all of it could be written: ") + std::strerror(errno));
    return 0;
}

}  // namespace

Command::Action declareShow(CLI::App &command)
{
    auto options = std::make_shared<ShowOptions>();
    command.add_option("FILE", options->file, "the recording")->required();
    options->report.declare(command);
    return [options](const Settings &settings) { return carryOut(*options, settings); };
}

}  // namespace tools
